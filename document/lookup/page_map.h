// The pages of a document and the annotations on them (ISO 32000-2, 7.7.3 and 12.5.2).
#pragma once

#include <cstdint>
#include <span>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/object.h"

class CPDFDictionary;

// An annotation that a page lists: its object number and the number of the page, which counts from 1.
struct PDF_PAGE_ANNOTATION {
    uint32_t num;
    int32_t page;
};

// The reference to an annotation, which is known by its number.
PDF_REF annotation_ref(CPDFXRefTable& xref, uint32_t num);

// Numbers the pages from 1 and knows which page lists an annotation. It holds what the document says at the time of
// load; the page contents and resources are not read.
class CPDFPageMap {
public:
    // Walks the page tree under "Pages" of the catalog `root` once. "Count" is not looked at; nodes that are no
    // dictionaries, too deep or seen before are left out, so a damaged tree gives the pages that can be reached.
    // Reads every section that is still pending.
    void load(CPDFXRefTable& xref, const CPDFObj& root);

    int32_t page_count() const { return static_cast<int32_t>(m_pages.size()); }

    // The object of page number `page`, 1 to page_count(). Object number 0 for a page held directly in its parent.
    const PDF_REF& page_ref(int32_t page) const { return m_pages[static_cast<size_t>(page - 1)]; }

    // The number of the page that is object `num`; 0 when it is none.
    int32_t page_of(uint32_t num) const;

    // The number of the first page whose "Annots" list object `num`; 0 when none does.
    int32_t page_of_annotation(uint32_t num) const;

    // Every annotation that is an object of its own, sorted by number, then by page; once for each page that lists it.
    const std::vector<PDF_PAGE_ANNOTATION>& annotations() const { return m_annotations; }

    // The same for object `num` alone.
    std::span<const PDF_PAGE_ANNOTATION> annotations_of(uint32_t num) const;

    // For whoever changes "Annots": notes that a page now lists these, or that no page does any more.
    void add_annotations(const std::vector<PDF_REF>& annotations, int32_t page);
    void remove_annotations(const std::unordered_set<uint32_t>& gone);

private:
    bool first_visit(uint32_t num) { return m_seen.emplace(num, 0).second; }
    void visit(const CPDFObj& entry, int depth);
    void add_page(const CPDFDictionary& page, const PDF_REF& ref);
    void drop_repeated();
    template <typename Visit>
    void for_each_once(const CPDFObj* entry, const Visit& visit);

    CPDFXRefTable* m_xref = nullptr;  // borrowed from the caller of load, while it runs
    int64_t m_entries_left = 0;
    std::vector<PDF_REF> m_pages;
    std::vector<PDF_PAGE_ANNOTATION> m_annotations;  // sorted by number and page, no pair twice
    std::unordered_map<uint32_t, int32_t> m_seen;    // objects visited; the page number of those that are pages
};
