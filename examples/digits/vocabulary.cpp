#include "vocabulary.h"

#include <algorithm>
#include <filesystem>

std::optional<int> wordInFileName(const std::string& file)
{
    const std::string stem = std::filesystem::path(file).stem();
    const std::string name = stem.substr(0, stem.find('-'));
    if (name.size() == 1 && name[0] >= '0' && name[0] <= '9')
        return name[0] - '0';
    const auto found = std::find(vocabulary.begin(), vocabulary.end(), name);
    if (found == vocabulary.end())
        return std::nullopt;
    return static_cast<int>(found - vocabulary.begin());
}
