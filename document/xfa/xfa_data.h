// The data set of an XFA form: elements whose names make paths, and at their ends values.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/limits.h"
#include "document/xfa/data_value.h"
#include "document/xfa/xml_tree.h"

// One step of a path: a name, and which of those beside it.
struct XFA_STEP {
    std::string name;
    int32_t index = 0;
    bool is_all = false;  // "[*]"
};

// Cuts the first step off `path`, with the dot behind it. False where it is no name with an index at most.
bool cut_xfa_step(std::string_view& path, XFA_STEP& step);

// A node is an element of the data set or one that will be added when it gets a value. Nodes are numbered; values are noted, and text()
// makes the new text, in which all that was not changed stays byte for byte.
class CPDFXfaData {
public:
    static constexpr int32_t NONE = -1;

    // Takes the text of a packet, or of a stream with all packets. Fails where it can't be read or has no data set; of a blank
    // text a data set is made.
    CPDFStatus open(std::string text);

    const CPDFXmlTree& tree() const { return m_tree; }
    // The element "datasets", and "data" in it.
    int32_t data_sets() const { return m_data_sets; }
    int32_t data() const { return m_data; }

    // The child of this name at this place among those of the name; made where it is missing, but NONE for a place far behind the last.
    int32_t child(int32_t parent, const XFA_STEP& step);
    // The same without making one.
    int32_t find_child(int32_t parent, const XFA_STEP& step);

    // What an element can stand for: one that is empty for either.
    enum KIND { GROUP, VALUE };

    // The first child of this name and kind that was not claimed before, which is claimed by that; NONE when there is none. `claim_or_add`
    // makes one then.
    int32_t claim(int32_t parent, std::string_view name, KIND kind);
    int32_t claim_or_add(int32_t parent, std::string_view name, KIND kind);

    // The same for the first value of this name anywhere under `top`.
    int32_t claim_anywhere(int32_t top, std::string_view name);

    // Whether the node is there already, and what it holds: its text, or those of its <value> elements.
    bool is_there(int32_t node) const { return node >= 0 && node < m_tree.count(); }
    std::vector<std::string> values(int32_t node) const;
    bool is_rich(int32_t node) const
    {
        return is_there(node) && kind_of(node) == IS_TEXT && m_tree.at(node).first >= 0;
    }

    // Whether the node can have a value: it holds no other elements than those of a list, and will not.
    bool takes_value(int32_t node) const
    {
        return m_added_in.count(node) == 0 && (!is_there(node) || kind_of(node) != IS_GROUP);
    }

    // Makes `value` the text of the node, or a list its <value> elements.
    void set_value(int32_t node, const std::string& value);
    void set_list(int32_t node, const std::vector<std::string>& values);
    bool is_changed() const { return !m_contents.empty(); }

    // The node of a value by its path; NONE when there is none.
    int32_t find(std::string_view path);

    // Sets the value at a path. Refuses a path that has none, and what XML can't hold.
    CPDFStatus set(const PDF_XFA_VALUE& value);

    // All values of the data, in their order. Fails where their paths are larger than what is supported.
    CPDFStatus list(std::vector<PDF_XFA_VALUE>& out) const;

    // The whole text as it is to be, and the data set in it.
    std::string text() const { return changed_text(0, m_tree.source().size()); }
    std::string data_set_text() const { return changed_text(m_tree.at(m_data_sets).begin, m_tree.at(m_data_sets).end); }

    // Whether so much was looked at that answers are no longer complete.
    bool is_exhausted() const { return m_visits > LIMIT_XFA_VISITS; }

private:
    // The children of one name, in order. Those before `open` are claimed.
    struct CHAIN {
        std::vector<int32_t> nodes;
        size_t open = 0;
    };
    // What an element is.
    enum CONTENT : uint8_t {
        IS_TEXT,
        IS_EMPTY,
        IS_LIST,  // of <value> elements: several values of one field, or a group
        IS_GROUP,
    };
    CONTENT content_of(int32_t element) const;
    CONTENT kind_of(int32_t element) const { return m_kinds[static_cast<size_t>(element)]; }

    bool is_value(int32_t element) const { return kind_of(element) == IS_TEXT || kind_of(element) == IS_EMPTY; }

    struct ADDED {
        std::string name;
        int32_t parent;
    };
    using NAMES = std::map<std::string, CHAIN, std::less<>>;

    NAMES& names_in(int32_t parent);
    CHAIN* chain(int32_t parent, std::string_view name);
    int32_t add(int32_t parent, std::string_view name);
    bool take(int32_t node);
    bool is_list(int32_t element) const;
    bool fits(int32_t node, KIND kind, bool empty) const;
    CPDFStatus append_values(int32_t group, std::string& path, std::vector<PDF_XFA_VALUE>& out, size_t& size) const;
    std::vector<bool> kept() const;
    void append_added(std::string& out, int32_t parent, const std::vector<bool>& kept) const;
    std::string changed_text(size_t begin, size_t end) const;

    CPDFXmlTree m_tree;
    std::vector<CONTENT> m_kinds;  // by element
    int32_t m_data_sets = NONE;
    int32_t m_data = NONE;
    std::unordered_map<int32_t, NAMES> m_names;                    // of the parents that were asked for
    std::vector<ADDED> m_added;                                    // numbered behind the elements
    std::map<int32_t, std::vector<int32_t>> m_added_in;            // by parent
    std::map<int32_t, std::string> m_contents;                     // new ones, as XML
    std::vector<bool> m_claimed;                                   // by node
    std::vector<std::pair<std::string_view, int32_t>> m_anywhere;  // values by name under m_anywhere_top
    int32_t m_anywhere_top = NONE;
    int64_t m_visits = 0;
};
