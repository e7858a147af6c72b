#pragma once

namespace kalo {

// Painting text and showing windows need a Qt GUI application object. Hosts
// that have one keep it; otherwise one is created on first use, offscreen
// when there is no display. Call from the host's user-interface thread.
void AseguraAplicacion();

}  // namespace kalo
