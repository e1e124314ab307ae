// Reads the vectors that vectors.py writes.
#ifndef KTBASE_TESTS_LONGARITH_VECTORS_H
#define KTBASE_TESTS_LONGARITH_VECTORS_H

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

using Limbs = std::vector<unsigned short>;

inline Limbs limbs(const std::string& hex) {
    Limbs a;
    for (std::size_t end = hex.size(); end != 0; end -= 4)
        a.push_back(static_cast<unsigned short>(std::stoul(hex.substr(end - 4, 4), nullptr, 16)));
    return a;
}

// The fields behind the name of every vector of that name.
inline std::vector<std::vector<std::string>> vectors(const std::string& wanted) {
    std::ifstream file(KTBASE_VECTORS);
    std::vector<std::vector<std::string>> found;
    for (std::string line; std::getline(file, line);) {
        std::istringstream fields(line);
        std::string name;
        fields >> name;
        if (name != wanted) continue;
        found.emplace_back();
        for (std::string field; fields >> field;) found.back().push_back(field);
    }
    return found;
}

#endif
