// The front end: from samples to mel-frequency cepstra with their dynamics.
#include "frontend.h"

#include <cmath>
#include <numbers>

namespace {

// The mel scale of O'Shaughnessy (1987) with the natural logarithm: mel = 1127 ln(1 + f / 700).
constexpr float melMultiplier = 1127;
constexpr float melDivisor = 700;

std::vector<float> hammingWindow(int length)
{
    std::vector<float> window(length);
    for (int n = 0; n < length; ++n)
        window[n] = static_cast<float>(0.54 - 0.46 * std::cos(2 * std::numbers::pi * n / (length - 1)));
    return window;
}

// Raises the high frequencies, which the voice has less of, and removes a constant offset almost wholly.
void preEmphasise(std::vector<float>& samples, float factor)
{
    for (std::size_t n = samples.size() - 1; n > 0; --n)
        samples[n] -= factor * samples[n - 1];
    samples[0] *= 1 - factor;
}

// Adds to every energy as much as a faint noise would, so that a digital silence has a logarithm.
void addNoiseFloor(std::vector<float>& energies, float dynamicRange)
{
    const int count = static_cast<int>(energies.size());
    float loudest = 0;
    require(zimsMax_32f(energies.data(), count, &loudest));
    const std::vector<float> floor(count, loudest * std::pow(10.0f, -dynamicRange / 20));
    require(zimsAdd_32f_I(floor.data(), energies.data(), count));
}

}  // namespace

FrontEnd::FrontEnd(double rate, const FrontEndSettings& settings)
    : settings_(settings),
      frameLength_(static_cast<int>(std::lround(settings.frameSeconds * rate))),
      shift_(static_cast<int>(std::lround(settings.shiftSeconds * rate))),
      window_(hammingWindow(frameLength_))
{
    ZimsFBankState_32f* bank = nullptr;
    require(zimsMelFBankInitAlloc_32f(
        &bank, &transformOrder_, frameLength_, static_cast<float>(rate),
        settings.formantScale * settings.lowestFrequency, settings.formantScale * settings.highestFrequency,
        settings.filters, melMultiplier, settings.formantScale * melDivisor, ZimFBankMelSlopes | ZimFBankFrameInput));
    bank_.reset(bank);

    // The factor makes the cosine transform an orthogonal one, but for the lifter.
    const float norm = std::sqrt(2.0f / settings.filters);
    ZimsDCTLifterState_32f* transform = nullptr;
    require(zimsDCTLifterInitAlloc_C0_32f(&transform, settings.filters, settings.cepstra, settings.lifter, norm, norm));
    transform_.reset(transform);
}

int FrontEnd::frameCount(std::size_t sampleCount) const
{
    const auto count = static_cast<int>(sampleCount);
    return count < frameLength_ ? 0 : 1 + (count - frameLength_) / shift_;
}

std::vector<float> FrontEnd::logEnergies(const std::vector<float>& samples) const
{
    std::vector<float> result(frameCount(samples.size()));
    for (std::size_t t = 0; t < result.size(); ++t) {
        const float* start = samples.data() + t * shift_;
        require(zimsDotProd_32f(start, start, frameLength_, &result[t]));
    }
    require(zimsLn_32f_I(result.data(), static_cast<int>(result.size())));  // of digital silence minus infinity
    return result;
}

Matrix FrontEnd::melSpectrum(std::vector<float> samples) const
{
    preEmphasise(samples, settings_.preEmphasis);
    Matrix energies(frameCount(samples.size()), settings_.filters);
    std::vector<float> frame(std::size_t{1} << transformOrder_);  // zeros behind the window
    for (int t = 0; t < energies.rows; ++t) {
        const float* start = samples.data() + static_cast<std::size_t>(t) * shift_;
        require(zimsMul_32f(start, window_.data(), frame.data(), frameLength_));
        require(zimsEvalFBank_32f(frame.data(), energies.row(t), bank_.get()));
    }
    addNoiseFloor(energies.values, settings_.dynamicRange);
    require(zimsLn_32f_I(energies.values.data(), static_cast<int>(energies.values.size())));
    return energies;
}

Matrix FrontEnd::cepstra(const Matrix& melSpectrum) const
{
    Matrix result(melSpectrum.rows, settings_.cepstra + 1);
    for (int t = 0; t < result.rows; ++t)
        require(zimsDCTLifter_32f(melSpectrum.row(t), result.row(t), transform_.get()));
    return result;
}

Matrix withDynamics(const Matrix& features)
{
    // The regression over two frames to each side divides by twice the sum of squares 1 + 4.
    constexpr float perFrame = 1.0f / 10;
    Matrix result(features.rows, 3 * features.columns);
    require(zimsDeltaDelta_Win2_32f_D2(features.values.data(), features.columns, result.values.data(), result.columns,
                                       features.rows, perFrame, perFrame, ZimDeltaBegin | ZimDeltaEnd));
    return result;
}
