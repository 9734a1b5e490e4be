// The hook in force: the one a test or the scripted runner installed, else the interactive one.
#include "platform/prompt.h"

namespace {

CPromptHook* g_hook = nullptr;

}  // namespace

void AfxSetPromptHook(CPromptHook* hook) { g_hook = hook; }

CPromptHook& AfxPromptHook() { return g_hook != nullptr ? *g_hook : AfxInteractivePrompts(); }

const char* AfxAppTitle() { return "Vantrel"; }
