// The words that are told apart.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

constexpr std::array<std::string_view, 11> vocabulary = {"zero", "one",   "two",   "three", "four", "five",
                                                         "six",  "seven", "eight", "nine",  "oh"};
constexpr int wordCount = static_cast<int>(vocabulary.size());

inline std::string wordName(int word)
{
    return std::string(vocabulary[word]);
}

// The word that a recording's name tells: "seven.wav", "seven-3.wav" and "7.wav" hold the word 7.
std::optional<int> wordInFileName(const std::string& file);
