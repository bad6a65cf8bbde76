#pragma once
// What the organiser's screens share on the main window: the host whose
// skin controls they fill, the core context and the working lists.
#include "organiser/AgendaStore.h"
#include "organiser/OrganiserContext.h"
#include "organiser/OrganiserState.h"

#include <functional>

namespace mirel {

class LayoutEngine;
class SkinHost;

/// The main window's organiser state, handed to every organiser screen.
struct OrganiserShared {
    SkinHost& host;
    OrganiserContext& ctx;
    OrganiserState state{};
    AgendaLists agenda{};
    SortedList lstSorted2{true}; // the overview's open tasks
    /// Lays out the organiser's dialogs; none in tests without a window.
    const LayoutEngine* engine = nullptr;
    /// Set by each save command: whether the editor's item reached its file.
    bool saved = false;
};

} // namespace mirel
