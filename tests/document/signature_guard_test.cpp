#include "document/lookup/signature_guard.h"

#include <gmock/gmock.h>

#include "tests/document/fill_fixture.h"

namespace {
using testing::AllOf;
using testing::HasSubstr;

constexpr const char* NAMES[] = {"open", "group.k", "grou"};

// A form with the fields of NAMES, signature fields "s" and "other" with the entries `field` and `other`, and object
// 30, a signature dictionary with `signature`, which the fields or `catalog` may name.
std::string signed_form(const std::string& catalog, const std::string& field, const std::string& signature,
                        const std::string& other)
{
    PdfBuilder file;
    file.form({"<</FT/Tx/T(open)>>", "<</T(group)/Kids[21 0 R]>>", "<</FT/Tx/T(grou)>>"});
    file.object(1, "<</AcroForm<</Fields[10 0 R 11 0 R 12 0 R 20 0 R 22 0 R]>>" + catalog + ">>");
    file.object(20, "<</FT/Sig/T(s)" + field + ">>").object(21, "<</FT/Tx/T<FEFF006B>/Parent 11 0 R>>");
    file.object(22, "<</FT/Sig/T(other)" + other + ">>");
    file.object(30, "<</Contents<01>/ByteRange[0 1 2 3]" + signature + ">>")
        .object(31, "<</TransformMethod/DocMDP/TransformParams 32 0 R>>");
    return file.object(32, "<</P 1>>").table().text;
}

std::string reference(const std::string& method, const std::string& parameters)
{
    return "/Reference[<</TransformMethod/" + method + "/TransformParams<<" + parameters + ">>>>]";
}
}  // namespace

TEST(SignatureGuardTest, WhatMayBeFilled)
{
    const std::string v = "/V 30 0 R";
    const auto fields = [](const char* parameters) { return reference("FieldMDP", parameters); };
    const auto document = [](const char* parameters) { return reference("DocMDP", parameters); };
    const std::string perms = "/Perms<</DocMDP 30 0 R>>";
    const struct {
        const char* label;
        std::string catalog, field, signature;
        std::string other;    // a second signature field, signed too unless it has no value
        const char* allowed;  // '+' or '-' for each of NAMES
        const char* reason;
    } cases[] = {
        {"no signature", "", "", "", "", "+++", ""},
        {"a signature", "", v, "", "", "+++", ""},
        {"certified, nothing may change", perms, "", document("/P 1"), "", "---", "certified"},
        {"certified, all behind references", "", v, "/Reference[31 0 R]", "", "---", "certified"},
        {"all locked", "", v, fields("/Action/All"), "", "---", "signature \"s\""},
        {"one locked", "", v, fields("/Action/Include/Fields[(open)(none)]"), "", "-++", "\"s\""},
        {"kids locked with their parent", "", v, fields("/Action/Include/Fields[<FEFF00670072006F00750070>]"), "",
         "+-+", "\"s\""},
        {"all but one", "", v, fields("/Action/Exclude/Fields[(group)]"), "", "-+-", "\"s\""},
        {"lock of a signed field", "", v + "/Lock<</Action/Include/Fields[(open)]>>", "", "", "-++", "\"s\""},
        {"lock of the other field", "", v, "", v + "/Lock<</Action/Include/Fields[(grou)]>>", "++-", "\"other\""},
        {"lock against any change", "", v + "/Lock<</Action/Include/Fields[(open)]/P 1>>", "", "", "---", "certified"},
        {"lock that allows filling", "", v + "/Lock<</Action/Include/Fields[(open)]/P 2>>", "", "", "-++", "\"s\""},
        {"empty signature", "", v + "/Lock<</Action/All>>", "/Contents<>", "", "+++", ""},
        {"wrong kinds", "/Perms[30 0 R]", v + "/Lock(x)",
         "/Reference[(x) null 99 0 R<<>><</TransformMethod/DocMDP/TransformParams 1>>]", "", "+++", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        for (const PDF_LOAD load : {PDF_LOAD::WHOLE_FORM, PDF_LOAD::NAMED_FIELDS}) {
            const std::string text = signed_form(c.catalog, c.field, c.signature, c.other);
            FormAtWork f(text, load);
            f.document.set_drawing(PDF_DRAWING::LEAVE_TO_VIEWERS);
            std::string allowed;
            for (const char* name : NAMES) {
                const CPDFStatus status = f.set(name, "x");
                allowed += status.ok() ? '+' : '-';
                if (status.ok())
                    continue;
                EXPECT_EQ(status.code, PDF_CODE::READ_ONLY);
                EXPECT_THAT(status.text, AllOf(HasSubstr(name), HasSubstr(c.reason)));
            }
            EXPECT_EQ(allowed, c.allowed);
            EXPECT_EQ(f.saved() == text, allowed == "---");
            CPDFDocument& d = f.document;
            const bool is_signed = has_signature(d.data(), d.size(), d.xref(), *d.root().dict) &&
                                   CPDFSignatureGuard(d.xref(), d.form(), *d.root().dict).is_signed();
            EXPECT_EQ(is_signed, c.label != std::string("no signature") && c.label != std::string("empty signature"));
            for (const char* name : NAMES)
                EXPECT_TRUE(f.set(name, "x", PDF_FILL::FORCE).ok());
            const bool asked = f.entry(1, "AcroForm").find("NeedAppearances") != std::string::npos;
            EXPECT_EQ(asked, !is_signed) << "never in a signed file";
        }
    }
}

TEST(SignatureGuardTest, MoreRightsForAViewerAreNoSignature)
{
    for (const auto& [method, is_signature] :
         {std::pair{"UR", false}, std::pair{"UR3", false}, std::pair{"DocMDP", true}, std::pair{"Identity", true}}) {
        FormAtWork f(signed_form("/Perms<</UR3 30 0 R>>", "", reference(method, ""), ""));
        CPDFDocument& d = f.document;
        EXPECT_EQ(has_signature(d.data(), d.size(), d.xref(), *d.root().dict), is_signature) << method;
    }
}

TEST(SignatureGuardTest, SignedBytesStay)
{
    const std::string input = read_text_file(FORMWORK_SAMPLES_DIR "/signed.pdf");
    FormAtWork f(input);
    ASSERT_TRUE(f.field("approval").is_signed());
    for (const char* value : {"one", "two", "three"}) {
        for (const char* name : {"party", "sum"})
            EXPECT_TRUE(f.set(name, value).ok());
        const std::string output = f.saved();
        EXPECT_GT(output.size(), input.size());
        EXPECT_EQ(output.substr(0, input.size()), input) << "every byte that the signature covers";
        EXPECT_EQ(output.find("NeedAppearances", input.size()), std::string::npos);
        FormAtWork again(output);
        EXPECT_TRUE(again.field("approval").is_signed());
        EXPECT_EQ(again.memory(), f.memory());
        // A later update stands behind the earlier ones.
        EXPECT_TRUE(again.set("sum", "later").ok());
        EXPECT_EQ(again.saved().substr(0, output.size()), output);
    }
}

TEST(NeedAppearancesTest, AskedForOnce)
{
    const struct {
        const char *label, *catalog, *form;
        uint32_t num;          // the object that holds the form
        const char* expected;  // its new version
        bool changes;
    } cases[] = {
        {"form in the catalog", "/AcroForm<</Fields[10 0 R]>>", "", 1,
         "<< /AcroForm << /Fields [10 0 R] /NeedAppearances true >> /Lang (x) >>", true},
        {"set elsewhere", "/AcroForm 3 0 R", "/Fields[10 0 R]/NeedAppearances 30 0 R", 3,
         "<< /Fields [10 0 R] /NeedAppearances 30 0 R >>", false},
        {"set to false", "/AcroForm 3 0 R", "/Fields[10 0 R]/NeedAppearances false", 3,
         "<< /Fields [10 0 R] /NeedAppearances true >>", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        PdfBuilder file;
        file.object(1, "<</Lang(x)" + std::string(c.catalog) + ">>").object(3, "<<" + std::string(c.form) + ">>");
        FormAtWork f(file.object(10, "<</FT/Tx/T(f)>>").object(30, "true").table().text);
        f.document.set_drawing(PDF_DRAWING::LEAVE_TO_VIEWERS);
        for (const char* value : {"one", "two"}) {
            ASSERT_TRUE(f.set("f", value).ok());
            EXPECT_EQ(f.document.xref().changed_count(), c.changes ? 2 : 1);
            CPDFObj holder;
            f.document.xref().get_entity(holder, {c.num, 0});
            EXPECT_EQ(show_object(holder), c.expected);
        }
    }
}
