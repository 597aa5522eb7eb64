// Finds outputs that several rows would write.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

// All names come twice: first their hashes are compared, 8 bytes a row, then the names of those that have one.
class OutputNames {
public:
    void add(const std::string& name);

    // Ends the first time; false when all names differ, and there is no second one.
    bool look_closer();

    // The row before `row` that has the name, too; 0 for none.
    size_t add_again(const std::string& name, size_t row);

private:
    std::vector<uint64_t> m_hashes;
    std::unordered_set<uint64_t> m_several;
    std::unordered_map<std::string, size_t> m_row_of;
};
