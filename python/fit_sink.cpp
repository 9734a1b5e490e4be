#include "fit_sink.h"

#include <cmath>

namespace {

constexpr double kNotFollowed = std::numeric_limits<double>::quiet_NaN();

CNetworkCopy CopyOf(const engine::CNetwork& net) {
    const size_t u = net.nUnits, weights = u * net.nInputs;
    return CNetworkCopy{net.nUnits,
                        std::vector<double>(net.pInputWeights, net.pInputWeights + weights),
                        std::vector<double>(net.pOutputWeights, net.pOutputWeights + u + 1),
                        std::vector<double>(net.pWidths, net.pWidths + u),
                        std::vector<double>(net.pCenters, net.pCenters + weights)};
}

}  // namespace

CFitSink::CFitSink(engine::CBufferStore& store, CFitSettings& settings, const CHeldOut* heldOut,
                   engine::UINT patience, CFitThread& thread, bool reporting)
    : m_store(store),
      m_settings(settings),
      m_heldOut(heldOut),
      m_patience(patience),
      m_thread(thread),
      m_reporting(reporting) {}

void CFitSink::TrialStarted(double error) {
    if (Growing()) {
        errors.push_back(error);  // the error right after the unit was placed
        NoteNonFinite(error, 0);
        return;
    }
    ++m_trials;
    errors.assign(1, error);
    iterations = 0;
    turnedNonFinite = false;
    NoteNonFinite(error, 0);
    m_settings.endTrial = false;
    m_runLow = std::numeric_limits<double>::infinity();
    m_sinceLow = 0;
    heldOutErrors.clear();
    if (m_heldOut) Follow(HeldOutError());
}

void CFitSink::IterationDone(engine::UINT iteration, double error) {
    errors.push_back(error);
    ++iterations;
    NoteNonFinite(error, iteration);
    const bool follow = m_heldOut && !Growing();
    const double heldOut = follow ? HeldOutError() : kNotFollowed;
    if (follow) Follow(heldOut);
    // A callback's stop takes effect at the head of the next iteration, as the window's Stop does.
    if (!Report(false, iteration, error, heldOut)) m_thread.Cancel().RequestStop();
}

void CFitSink::NetworkDone() {
    if (!Growing()) return;
    const double heldOut = m_heldOut ? HeldOutError() : kNotFollowed;
    if (m_heldOut) Follow(heldOut);
    Report(true, m_units, m_unitError, heldOut);  // a unit's report informs; only iterations can stop
}

void CFitSink::KeepBest() {
    if (!m_hasBest) return;
    m_store.SetNetwork(m_best.units, m_store.Network().nInputs, m_best.inputWeights.data(),
                       m_best.outputWeights.data(), m_best.widths.data(), m_best.centers.data());
}

double CFitSink::HeldOutError() {
    const engine::CPatterns patterns{m_heldOut->inputs.data(), m_heldOut->targets.data(), m_heldOut->patterns,
                                     m_heldOut->nInputs, 1};
    return engine::AverageError(engine::ViewOf(m_store.Network(), patterns, false), nullptr, m_thread.Cancel());
}

void CFitSink::Follow(double heldOutError) {
    heldOutErrors.push_back(heldOutError);
    // The first of equal errors is kept: the smaller network, or the one trained less.
    if (std::isfinite(heldOutError) && (!m_hasBest || heldOutError < bestHeldOutError)) {
        bestHeldOutError = heldOutError;
        m_best = CopyOf(m_store.Network());
        m_hasBest = true;
    }
    if (heldOutError < m_runLow) {
        m_runLow = heldOutError;
        m_sinceLow = 0;
    } else if (++m_sinceLow >= m_patience) {
        m_settings.endTrial = true;
    }
}

void CFitSink::NoteNonFinite(double error, engine::UINT iteration) {
    if (turnedNonFinite || std::isfinite(error)) return;
    turnedNonFinite = true;
    nonFiniteTrial = Growing() ? m_units : m_trials;
    nonFiniteIteration = iteration;
}

bool CFitSink::Report(bool unit, engine::UINT number, double error, double heldOutError) {
    return !m_reporting || m_thread.Report(CProgressReport{unit, number, error, heldOutError});
}
