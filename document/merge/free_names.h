// Names that two documents have together.
#pragma once

#include <string>
#include <unordered_map>
#include <unordered_set>

class CPDFFreeNames {
public:
    void add(const std::string& name) { m_taken.insert(name); }

    // `name` itself, or with a number at its end, or before `suffix` where it ends so; it is taken then.
    std::string take(const std::string& name, const std::string& suffix = "")
    {
        if (m_taken.insert(name).second)
            return name;
        int& number = m_numbers.try_emplace(name, 1).first->second;
        std::string free;
        do
            free = name.substr(0, name.size() - suffix.size()) + "_" + std::to_string(++number) + suffix;
        while (!m_taken.insert(free).second);
        return free;
    }

private:
    std::unordered_set<std::string> m_taken;
    std::unordered_map<std::string, int> m_numbers;  // the last that was given to each name
};
