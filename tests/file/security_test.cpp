#include "file/security/security_handler.h"

#include <gtest/gtest.h>

#include "core/stream.h"
#include "core/xref_table.h"
#include "file/syntax/parser.h"
#include "tests/support/pdf_builder.h"

namespace {

// What another program wrote for the user's password "u" and the owner's "o"; all numbers are in here, and none in the file.
const std::string PROOFS =
    "/O<d47fec68816f77fa27619e75f82f51f51e51ed9bcaba10261e4ca1f2fa0a13b35f75895e71b557fc6e486b6cc3e966e5>"
    "/OE<1851fb4aba36ebc4ff8e033297f2c8669b07f598eef8a1ae18c6eedc10f32dcf>"
    "/U<4440fb53f4472834197f48ab1bf57728be132b3bafc6e853bb0728e85d6bf48a8847a55821f0369652c255963b6d803d>"
    "/UE<dc204a728d62e4d765fb2234f996979011f15917a10ce0e045f80d48b8f6e245>";

std::string encryption(const std::string& more)
{
    return "<</Filter/Standard/V 5/R 6/P -4/Length 256/CF<</StdCF<</CFM/AESV3>>/Plain<</CFM/None>>>>" + PROOFS + more +
           ">>";
}

const std::string ALL = encryption("/StmF/StdCF/StrF/StdCF");

void parse(const std::string& text, CPDFObj& out)
{
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    ASSERT_TRUE(CPDFParser(bytes, bytes + text.size(), nullptr).parse(out, nullptr)) << text;
}

PDF_UNLOCK unlock(const std::string& dictionary, const std::string& password, std::unique_ptr<CPDFSecurityHandler>& out)
{
    CPDFObj encrypt;
    parse(dictionary, encrypt);
    CPDFXRefTable xref;
    return CPDFSecurityHandler::unlock(xref, *encrypt.dictionary(), "", password, out);
}

// `data` as they stand in an encrypted file.
std::string encrypted(const PDF_CIPHER_KEY& key, const std::string& data)
{
    std::string out(encrypted_size(key.cipher, data.size()), '?');
    encrypt(key, reinterpret_cast<const uint8_t*>(data.data()), data.size(), reinterpret_cast<uint8_t*>(out.data()));
    return out;
}

}  // namespace

TEST(SecurityTest, TellsWhatOpensAFileAndWhatDoesNot)
{
    const struct {
        std::string dictionary;
        const char* password;
        PDF_UNLOCK expected;
        bool may_fill;
        bool may_modify;
    } cases[] = {
        {ALL, "u", PDF_UNLOCK::OPEN, true, true},
        {ALL, "o", PDF_UNLOCK::OPEN, true, true},
        {ALL, "", PDF_UNLOCK::WRONG_PASSWORD, false, false},
        {ALL, "U", PDF_UNLOCK::WRONG_PASSWORD, false, false},
        {encryption("/P -300"), "u", PDF_UNLOCK::OPEN, false, false},
        {encryption("/P -44"), "u", PDF_UNLOCK::OPEN, true, false},
        {encryption("/P 4294967252"), "u", PDF_UNLOCK::OPEN, true, false},  // -44 without its sign
        {encryption("/P -300"), "o", PDF_UNLOCK::OPEN, true, true},
        {encryption("/StmF/Other"), "u", PDF_UNLOCK::UNKNOWN, false, false},
        {encryption("/V 3"), "u", PDF_UNLOCK::UNKNOWN, false, false},
        {encryption("/R 7"), "u", PDF_UNLOCK::UNKNOWN, false, false},
        {encryption("/U(short)"), "u", PDF_UNLOCK::WRONG_PASSWORD, false, false},
        {encryption("/O()"), "u", PDF_UNLOCK::DAMAGED, false, false},
        {encryption("/Filter/Adobe.PubSec"), "u", PDF_UNLOCK::PUBLIC_KEY, false, false},
        {encryption("/Filter/Own"), "u", PDF_UNLOCK::UNKNOWN, false, false},
        {"<</Filter/Unknown/V 5/R 6/P -4>>", "", PDF_UNLOCK::UNKNOWN, false, false},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.dictionary.substr(each.dictionary.size() - 30) + " with " + each.password);
        std::unique_ptr<CPDFSecurityHandler> handler;
        EXPECT_EQ(unlock(each.dictionary, each.password, handler), each.expected);
        ASSERT_EQ(handler != nullptr, each.expected == PDF_UNLOCK::OPEN);
        if (handler) {
            EXPECT_EQ(handler->permissions().fill, each.may_fill);
            EXPECT_EQ(handler->permissions().modify, each.may_modify);
        }
    }
}

TEST(SecurityTest, StreamsChooseTheirCipher)
{
    const struct {
        const char* choice;
        const char* dictionary;
        bool is_encrypted;
    } cases[] = {
        {"/StmF/StdCF", "<</Type/XObject>>", true},
        {"", "<</Type/XObject>>", false},
        {"/StmF/Identity", "<</Type/XObject>>", false},
        {"/StmF/Plain", "<</Type/XObject>>", false},
        {"/StmF/StdCF", "<</Type/XRef>>", false},
        {"/StmF/StdCF", "<</Type/Metadata>>", true},
        {"/StmF/StdCF/EncryptMetadata false", "<</Type/Metadata>>", false},
        {"/StmF/StdCF", "<</Filter/Crypt>>", false},
        {"/StmF/StdCF", "<</Filter[/Crypt/FlateDecode]/DecodeParms[<</Name/Identity>>null]>>", false},
        {"/StmF/Plain", "<</Filter[/Crypt]/DecodeParms[<</Name/StdCF>>]>>", true},
        {"", "<</Filter/Crypt/DecodeParms<</Name/StdCF>>>>", true},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(std::string(each.choice) + " " + each.dictionary);
        std::unique_ptr<CPDFSecurityHandler> handler;
        ASSERT_EQ(unlock(encryption(each.choice), "u", handler), PDF_UNLOCK::OPEN);
        CPDFObj dict;
        parse(each.dictionary, dict);
        const PDF_CIPHER_KEY key = handler->stream_key(nullptr, *dict.dictionary(), {4, 0});
        EXPECT_EQ(key.cipher, each.is_encrypted ? PDF_CIPHER::AES : PDF_CIPHER::NONE);
    }
}

// Strings of a file, of its streams and of its object streams; what is never encrypted; and what is damaged.
TEST(SecurityTest, ReaderDecryptsWhatIsEncrypted)
{
    std::unique_ptr<CPDFSecurityHandler> handler;
    ASSERT_EQ(unlock(ALL, "u", handler), PDF_UNLOCK::OPEN);
    CPDFDictionary none;
    const PDF_CIPHER_KEY key = handler->stream_key(nullptr, none, {1, 0});
    const auto hex = [](const std::string& data) {
        std::string out = "<";
        for (const char byte : data) {
            constexpr char DIGITS[] = "0123456789ABCDEF";
            out += DIGITS[static_cast<uint8_t>(byte) >> 4];
            out += DIGITS[byte & 15];
        }
        return out + ">";
    };
    const std::string text = hex(encrypted(key, "text"));
    PdfBuilder file;
    file.object(1, "<</Type/Catalog/A " + text + "/B[()" + text + "]>>");
    file.object(2, ALL);
    file.object(3, "<</ByteRange[0 1 2 3]/Contents(as it is)/Reason " + text + ">>");
    file.object(4, "[" + hex("too short") + text.substr(0, 60) + ">]");
    file.stream(5, "/Type/Any/Text " + text, encrypted(key, "data"));
    file.stream(6, "/Type/ObjStm/N 1/First 4", encrypted(key, "7 0 (plain)"));
    file.entry(7, PDF_XREF_IN_STREAM, 6, 0);
    file.xref_stream(8, "/Encrypt 2 0 R/ID[(plain)(plain)]");
    FileAtWork work(file.text);
    ASSERT_TRUE(work.reader.unlock(work.xref, "u").ok());
    EXPECT_EQ(work.show(1), "<< /A (text) /B [() (text)] /Type /Catalog >>");
    EXPECT_NE(work.show(2).find("D47FEC68"), std::string::npos);
    EXPECT_EQ(work.show(3), "<< /ByteRange [0 1 2 3] /Contents (as it is) /Reason (text) >>");
    EXPECT_EQ(work.show(4), "[() ()]");
    EXPECT_NE(work.show(5).find("/Text (text)"), std::string::npos);
    EXPECT_EQ(work.data(5), "data");
    EXPECT_EQ(work.show(7), "(plain)");
    EXPECT_NE(work.show(8).find("(plain)"), std::string::npos);
}
