#include "corpus.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "vocabulary.h"

namespace {

namespace fs = std::filesystem;

constexpr double formantScales[] = {0.9, 1, 1.1};

std::vector<fs::path> sortedEntries(const fs::path& folder)
{
    std::vector<fs::path> entries;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        entries.push_back(entry.path());
    std::sort(entries.begin(), entries.end());
    return entries;
}

Voice readVoice(const fs::path& folder)
{
    const std::string name = folder.filename();
    Voice voice;
    voice.speaker = name.substr(0, name.find('-'));
    for (const fs::path& file : sortedEntries(folder)) {
        if (const std::optional<int> word = wordInFileName(file)) {
            voice.recordings.push_back(readWav(file));
            voice.words.push_back(*word);
        }
    }
    return voice;
}

}  // namespace

std::vector<Voice> readVoices(const std::string& folder)
{
    if (!fs::is_directory(folder))
        throw std::runtime_error(folder + ": no such folder");
    std::vector<Voice> voices;
    for (const fs::path& entry : sortedEntries(folder)) {
        if (!fs::is_directory(entry))
            continue;
        Voice voice = readVoice(entry);
        if (!voice.recordings.empty())
            voices.push_back(std::move(voice));
    }
    return voices;
}

std::vector<Example> examplesOf(const Voice& voice)
{
    std::vector<Example> examples;
    for (const double scale : formantScales) {
        std::vector<Utterance> utterances = analyse(voice.recordings, scale);
        for (std::size_t i = 0; i < utterances.size(); ++i)
            examples.push_back({voice.words[i], utterances[i].speech, std::move(utterances[i].features)});
    }
    return examples;
}
