#pragma once

namespace kalo {

// Runs one step of a routine that carries on past its failures.
template <class F>
void Ignora(F&& paso) {
    try {
        paso();
    } catch (...) {
    }
}

}  // namespace kalo
