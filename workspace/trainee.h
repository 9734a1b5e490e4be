// The workspace as the engine's trainee: its heap blocks as a store and its patterns as a source for the
// engine's one network policy (engine/policy.h). The runs drive it on the worker; the workspace's network
// members (numerics.cpp) are thin calls of it, so both go through the same policy. It owns nothing: the blocks
// stay the workspace's, taken and grown through blocks.h.
#pragma once

#include <optional>

#include "engine/policy.h"

class CVantrelDlg;

// The network and training blocks of the workspace.
class CWorkspaceStore : public engine::CNetworkStore {
public:
    explicit CWorkspaceStore(CVantrelDlg& dlg) : m_dlg(dlg) {}
    engine::Algorithm GetAlgorithm() override;
    engine::CNetwork Network() override;
    engine::CNetwork InitialNetwork() override;
    engine::CStepArrays Step() override;
    void SizeParameters(engine::UINT nParams) override;
    double* SizeDerivatives(bool secondOrder) override;
    double* Spare() override;
    void SetNoUnits() override;
    void AddUnit() override;
    const engine::CInitSettings& InitSettings() override;
    engine::CRandomSource& NewDraw() override;

private:
    CVantrelDlg& m_dlg;
    engine::CInitSettings m_init;
    std::optional<engine::CSeededRand> m_random;  // the draw under way, seeded by its start
};

// The workspace's patterns and its kept outputs (m_pOutputs).
class CWorkspacePatterns : public engine::CLocalPatterns {
public:
    explicit CWorkspacePatterns(CVantrelDlg& dlg) : m_dlg(dlg) {}
    CArrays Arrays() override;

private:
    CVantrelDlg& m_dlg;
};

class CWorkspaceTrainee : public engine::CNetworkPolicy {
public:
    explicit CWorkspaceTrainee(CVantrelDlg& dlg);

private:
    // The policy's base is constructed before these and only keeps references to them until it is used.
    CWorkspaceStore m_store;
    CWorkspacePatterns m_patterns;
};
