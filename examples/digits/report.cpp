#include "report.h"

#include <algorithm>
#include <filesystem>
#include <iomanip>
#include <limits>
#include <optional>
#include <ostream>

#include "vocabulary.h"

namespace {

void printRow(std::ostream& out, const std::string& file, const std::optional<int>& truth, const Answer& answer)
{
    const bool wrong = truth && *truth != answer.word;
    out << std::left << std::setw(16) << std::filesystem::path(file).filename().string() << std::setw(8)
        << (truth ? vocabulary[*truth] : "?") << std::setw(8) << vocabulary[answer.word] << std::setw(6)
        << (wrong ? "wrong" : "") << std::right << std::setprecision(2) << std::setw(8) << answer.margin << "   "
        << vocabulary[answer.runnerUp] << '\n';
}

// Over the recordings whose names tell the word.
struct Accuracy {
    int known = 0;
    int right = 0;
};

Accuracy accuracy(const std::vector<Recording>& recordings, const Hearing& hearing)
{
    Accuracy result;
    for (std::size_t i = 0; i < recordings.size(); ++i) {
        const std::optional<int> truth = wordInFileName(recordings[i].file);
        result.known += truth.has_value();
        result.right += truth == hearing.answers[i].word;
    }
    return result;
}

struct Margins {
    double mean = 0;
    double smallest = std::numeric_limits<double>::infinity();
};

Margins margins(const Hearing& hearing)
{
    Margins result;
    for (const Answer& answer : hearing.answers) {
        result.mean += answer.margin / static_cast<double>(hearing.answers.size());
        result.smallest = std::min(result.smallest, answer.margin);
    }
    return result;
}

}  // namespace

void reportTraining(std::ostream& out, std::size_t voices, std::size_t examples, double seconds)
{
    out << std::fixed << "trained by " << voices << " synthetic voices on " << examples << " examples in "
        << std::setprecision(1) << seconds << " s\n\n";
}

void reportHearing(std::ostream& out, const std::vector<Recording>& recordings, const Hearing& hearing,
                   double computingSeconds)
{
    out << std::fixed << "recording       truth   answer          margin   runner-up\n";
    double speechSeconds = 0;
    for (std::size_t i = 0; i < recordings.size(); ++i) {
        printRow(out, recordings[i].file, wordInFileName(recordings[i].file), hearing.answers[i]);
        speechSeconds += recordings[i].seconds();
    }
    out << "(margin: log-likelihood over the runner-up's, in nats a frame; formants taken " << hearing.formantScale
        << " times as high)\n\n";
    const auto [known, right] = accuracy(recordings, hearing);
    if (known > 0)
        out << "accuracy: " << right << " of " << known << ", " << std::setprecision(1) << 100.0 * right / known
            << " %\n";
    out << "time: " << std::setprecision(4) << computingSeconds / speechSeconds << " of real time, "
        << std::setprecision(1) << 1000 * computingSeconds << " ms for " << speechSeconds << " s of recordings\n";
}

void reportCost(std::ostream& out, const std::vector<Recording>& recordings, const Hearing& floating,
                const Hearing& fixed)
{
    int different = 0;
    for (std::size_t i = 0; i < recordings.size(); ++i)
        different += floating.answers[i].word != fixed.answers[i].word;
    const Margins before = margins(floating), after = margins(fixed);
    out << "cost of 16 bits: " << different << " of " << recordings.size() << " answers differ from floating point, "
        << accuracy(recordings, floating).right - accuracy(recordings, fixed).right << " fewer are right; margin "
        << std::setprecision(4) << after.mean << " instead of " << before.mean << " on average, " << after.smallest
        << " instead of " << before.smallest << " at the least\n";
}
