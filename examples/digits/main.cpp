// Recognises single spoken digits. The models are trained on synthetic speech at every start; it takes seconds.
#include <algorithm>
#include <chrono>
#include <exception>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "corpus.h"
#include "plot.h"
#include "recogniser.h"
#include "report.h"
#include "training.h"
#include "validation.h"

namespace {

constexpr const char* usage =
    "usage: digits [--fixed] [--validate] [--plot FILE.svg] TRAINING_FOLDER [RECORDING.wav ...]\n"
    "\n"
    "Trains a model of each word from zero to nine and oh, and recognises the recordings,\n"
    "which are taken for the same voice over the same channel.\n"
    "\n"
    "  --fixed          recognise with features and models in 16 bits, and tell what that costs\n"
    "  --validate       recognise each training speaker by models of the others\n"
    "  --plot FILE.svg  draw the first recording and how it was recognised\n";

struct Options {
    bool fixed = false;
    bool validate = false;
    std::optional<std::string> plot;
    std::string trainingFolder;
    std::vector<std::string> recordings;
};

std::optional<Options> parse(const std::vector<std::string>& arguments)
{
    Options options;
    std::vector<std::string> files;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--fixed")
            options.fixed = true;
        else if (arguments[i] == "--validate")
            options.validate = true;
        else if (arguments[i] == "--plot" && i + 1 < arguments.size())
            options.plot = arguments[++i];
        else if (arguments[i].starts_with("--"))
            return std::nullopt;
        else
            files.push_back(arguments[i]);
    }
    if (files.empty() || (options.plot && files.size() < 2))
        return std::nullopt;
    options.trainingFolder = files.front();
    options.recordings.assign(files.begin() + 1, files.end());
    return options;
}

class Stopwatch {
public:
    double seconds() const { return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count(); }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

Models trainOn(const std::vector<Voice>& voices)
{
    const Stopwatch watch;
    std::vector<Example> examples;
    for (const Voice& voice : voices)
        std::ranges::move(examplesOf(voice), std::back_inserter(examples));
    std::vector<const Example*> all;
    for (const Example& example : examples)
        all.push_back(&example);
    Models models = train(all);
    reportTraining(std::cout, voices.size(), all.size(), watch.seconds());
    return models;
}

template <class AnyModels>
Hearing recogniseAll(const AnyModels& models, const std::vector<Recording>& recordings)
{
    const Stopwatch watch;
    Hearing hearing = recognise(models, recordings);
    reportHearing(std::cout, recordings, hearing, watch.seconds());
    return hearing;
}

Hearing recogniseInFixedPoint(const Models& models, const std::vector<Recording>& recordings)
{
    Hearing hearing = recogniseAll(quantise(models), recordings);
    reportCost(std::cout, recordings, recognise(models, recordings), hearing);
    return hearing;
}

void run(const Options& options)
{
    // A bad recording is told before the work of training.
    std::vector<Recording> recordings;
    for (const std::string& file : options.recordings)
        recordings.push_back(readWav(file));

    const std::vector<Voice> voices = readVoices(options.trainingFolder);
    if (options.validate)
        validate(voices, options.fixed, std::cout);
    if (recordings.empty())
        return;
    const Models models = trainOn(voices);
    const Hearing hearing =
        options.fixed ? recogniseInFixedPoint(models, recordings) : recogniseAll(models, recordings);
    if (options.plot)
        plotFirst(*options.plot, recordings.front(), hearing);
}

}  // namespace

int main(int argc, char** argv)
{
    const std::optional<Options> options = parse({argv + 1, argv + argc});
    if (!options) {
        std::cerr << usage;
        return 2;
    }
    try {
        run(*options);
    } catch (const std::exception& fault) {
        std::cerr << "digits: " << fault.what() << '\n';
        return 1;
    }
}
