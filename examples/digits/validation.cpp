#include "validation.h"

#include <algorithm>
#include <functional>
#include <iomanip>
#include <map>
#include <ostream>
#include <set>
#include <utility>

#include "recogniser.h"
#include "training.h"
#include "vocabulary.h"

namespace {

struct Tally {
    int count = 0;
    int right = 0;
    std::map<std::pair<int, int>, int> errors;  // how often a word (first) was taken for another (second)

    void add(const Voice& voice, const Hearing& hearing)
    {
        for (std::size_t i = 0; i < voice.words.size(); ++i) {
            ++count;
            if (hearing.answers[i].word == voice.words[i])
                ++right;
            else
                ++errors[{voice.words[i], hearing.answers[i].word}];
        }
    }

    double percentRight() const { return 100.0 * right / count; }
};

// With the commonest three errors, as in "two for zero 5".
std::ostream& operator<<(std::ostream& out, const Tally& tally)
{
    out << std::setw(5) << tally.right << " of " << std::setw(4) << tally.count << std::setw(7) << tally.percentRight()
        << " %";
    std::multimap<int, std::pair<int, int>, std::greater<>> byCount;
    for (const auto& [words, count] : tally.errors)
        byCount.emplace(count, words);
    int printed = 0;
    for (const auto& [count, words] : byCount) {
        if (++printed > 3)
            break;
        out << (printed == 1 ? "   " : ", ") << vocabulary[words.second] << " for " << vocabulary[words.first] << ' '
            << count;
    }
    return out;
}

}  // namespace

void validate(const std::vector<Voice>& voices, bool fixed, std::ostream& out)
{
    std::set<std::string> speakers;
    std::vector<std::vector<Example>> examples;
    for (const Voice& voice : voices) {
        speakers.insert(voice.speaker);
        examples.push_back(examplesOf(voice));
    }

    out << "speaker left out   right           most frequent errors\n" << std::fixed << std::setprecision(1);
    double sumOfShares = 0;
    for (const std::string& speaker : speakers) {
        std::vector<const Example*> known;
        for (std::size_t v = 0; v < voices.size(); ++v)
            if (voices[v].speaker != speaker)
                for (const Example& example : examples[v])
                    known.push_back(&example);
        const Models models = train(known);
        const FixedModels fixedModels = quantise(models);

        Tally tally;
        for (const Voice& voice : voices)
            if (voice.speaker == speaker)
                tally.add(voice,
                          fixed ? recognise(fixedModels, voice.recordings) : recognise(models, voice.recordings));
        sumOfShares += tally.percentRight();
        out << std::left << std::setw(16) << speaker << std::right << tally << '\n';
    }
    out << "mean over speakers          " << std::setw(6) << sumOfShares / static_cast<double>(speakers.size())
        << " %\n\n";
}
