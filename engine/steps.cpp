// The iteration steps: the first-order update and the damped try loop of the second-order methods and of the
// Error Correction Algorithm.
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "engine/matrix.h"
#include "engine/memory.h"
#include "engine/runs.h"

namespace engine {

void ApplyFirstOrderStep(const CStepArrays& step, double learningConstant, double momentum) {
    const double L = learningConstant;
    const double M = momentum;
    for (UINT i = 0; i < step.nParams; ++i) {
        const double old = step.pParams[i];
        step.pParams[i] = old - (1 - M) * step.pGradient[i] * L + M * step.pDelta[i];
        step.pDelta[i] = step.pParams[i] - old;
    }
}

namespace {

// What a form that fails non-finite tries changes of the window's rules, in one place.
struct CNonFiniteRule {
    // x solves the damped system; false when the matrix is singular and the form fails such a try.
    static bool Solve(CTrainee& trainee, const CDampedForm& form, const double* diagonal, double damping, double* x,
                      CNextTry* next) {
        if (!form.nonFiniteFails) {
            trainee.SolveHessian(diagonal, damping, x, next);
            return true;
        }
        try {
            trainee.SolveHessian(diagonal, damping, x, next);
            return true;
        } catch (const CSingularMatrixException&) {
            return false;
        }
    }

    // Whether a try's error counts as lower: the window takes a NaN for lower.
    static bool Lower(const CDampedForm& form, double error, double previousError) {
        return form.nonFiniteFails ? error < previousError : !(error >= previousError);
    }

    // The iteration's error. The window keeps the last of six failed tries, and the next iteration goes on from
    // it, from a NaN too; a form that fails non-finite tries keeps only a successful one and otherwise returns
    // the network to where the iteration began, so that a run of failed tries never carries the network away.
    static double Settle(CTrainee& trainee, const CDampedForm& form, const CStepArrays& s, bool lowered,
                         double error) {
        if (!form.nonFiniteFails || lowered) return error;
        std::memcpy(s.pParams, s.pDelta, size_t(s.nParams) * sizeof(double));
        trainee.UnpackParameters();
        return form.keepOutputs ? trainee.ComputeOutputs() : trainee.ComputeError();
    }
};

// The damping of the next try after a failed one, or of the next iteration's first after a lowered error: ten
// times or a tenth the value, within the ceiling and the floor.
double DampingAfter(bool lowered, double damping) {
    if (lowered && damping > kDampingFloor) return damping * 0.1;
    if (!lowered && damping < kDampingCeiling) return damping * 10.0;
    return damping;
}

// The steps of one iteration's tries. The trainee may solve the step of the try after a failure beside each,
// on a thread that the factorization leaves free; that try then takes it as it stands.
class CTrySteps {
public:
    explicit CTrySteps(size_t n) : m_step(n), m_ahead(n) {}

    // The step of a try at `damping` into Step(); false where the form fails a try of a singular matrix. last:
    // no try follows this one.
    bool Solve(CTrainee& trainee, const CDampedForm& form, const double* diagonal, double damping, bool last) {
        if (m_next.solved && m_next.damping == damping) {
            m_step.swap(m_ahead);
            m_next.solved = false;
            return true;
        }
        m_next = CNextTry{DampingAfter(false, damping), m_ahead.data(), false};
        return CNonFiniteRule::Solve(trainee, form, diagonal, damping, m_step.data(), last ? nullptr : &m_next);
    }
    const double* Step() const { return m_step.data(); }

private:
    std::vector<double> m_step, m_ahead;
    CNextTry m_next;  // m_ahead's try
};

}  // namespace

CDampedStep DampedIteration(CTrainee& trainee, const CDampedForm& form, double previousError, double damping,
                            const CCancelToken& cancel) {
    trainee.Accumulate(form.improved, true);  // once per iteration: every try steps from the same sums
    const CStepArrays s = trainee.Step();
    const size_t n = s.nParams;
    std::memcpy(s.pDelta, s.pParams, n * sizeof(double));
    // Each try writes its factors over the quasi-Hessian's diagonal and upper triangle, and reads the matrix
    // from the strict lower triangle, which stays, and from this copy of the diagonal.
    std::vector<double> diagonal(n);
    for (size_t d = 0; d < n; ++d) diagonal[d] = s.pHessian[d * n + d];

    CDampedStep result{0.0, damping, 0};
    CTrySteps steps(n);
    bool lowered = false;
    while (!lowered && result.tries < kMaxTries) {
        cancel.ThrowIfAbandoned();
        ++result.tries;
        // The step is the damped matrix's inverse applied to the gradient; a solve with the factors gives it
        // at a fraction of the cost of forming the inverse.
        if (steps.Solve(trainee, form, diagonal.data(), result.damping, result.tries == kMaxTries)) {
            const double* step = steps.Step();
            for (size_t r = 0; r < n; ++r) s.pParams[r] = s.pDelta[r] - step[r];
            trainee.UnpackParameters();
            result.error = form.keepOutputs ? trainee.ComputeOutputs() : trainee.ComputeError();
        } else {
            result.error = std::numeric_limits<double>::quiet_NaN();
        }
        // Smaller, or NaN: success. An equal error is a failure.
        lowered = CNonFiniteRule::Lower(form, result.error, previousError);
        result.damping = DampingAfter(lowered, result.damping);
    }
    result.error = CNonFiniteRule::Settle(trainee, form, s, lowered, result.error);
    return result;
}

void CheckQuasiHessianFits(UINT nParams) {
    const double n = nParams;
    // Two n x n blocks live during a damped trial: the quasi-Hessian, which holds each try's factors beside
    // the sums, and its spare. What can't fit is refused here, before either is taken, where the run can still
    // say why.
    if (!DoublesFit(2.0 * n * n)) throw CQuasiHessianTooLarge();
}

}  // namespace engine
