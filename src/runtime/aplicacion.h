#pragma once

namespace kalo {

// Painting text and showing windows need a Qt GUI application object. Hosts
// that have one keep it; otherwise one is created on first use, offscreen
// when there is no display. Call from the host's user-interface thread.
void AseguraAplicacion();

// True when the application object is the component's own and runs
// offscreen only because there was no display: nobody can see a window.
// False when the host or the environment chose the platform.
bool SinPantallaVisible();

}  // namespace kalo
