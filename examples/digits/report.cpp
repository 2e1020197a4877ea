#include "report.h"

#include <filesystem>
#include <iomanip>
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
    int known = 0, right = 0;
    double speechSeconds = 0;
    for (std::size_t i = 0; i < recordings.size(); ++i) {
        const std::optional<int> truth = wordInFileName(recordings[i].file);
        printRow(out, recordings[i].file, truth, hearing.answers[i]);
        known += truth.has_value();
        right += truth == hearing.answers[i].word;
        speechSeconds += recordings[i].seconds();
    }
    out << "(margin: log-likelihood over the runner-up's, in nats a frame; formants taken " << hearing.formantScale
        << " times as high)\n\n";
    if (known > 0)
        out << "accuracy: " << right << " of " << known << ", " << std::setprecision(1) << 100.0 * right / known
            << " %\n";
    out << "time: " << std::setprecision(4) << computingSeconds / speechSeconds << " of real time, "
        << std::setprecision(1) << 1000 * computingSeconds << " ms for " << speechSeconds << " s of recordings\n";
}
