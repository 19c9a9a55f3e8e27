// The application's state: an integer that only grows as the host moves through its life
// (starting, running, shutting down...). Objects that must go before a given state register
// their destruction for it (utility::detail::DestroyOnAppState); moving to a state runs every
// registration for it and the states before it, newest first. Process-wide; any thread, though
// the host moves the state from its main thread.
//
//   kelcore::appstatemanager::SetAppState(9);   // destroys what was registered for 1..9
//   assert(kelcore::appstatemanager::HasReachedAppStateAlready(9));
#pragma once

namespace kelcore::appstatemanager {

/// Moves to `appState` and runs, on the calling thread and with no lock held, every
/// destroy-registration for a state up to `appState`, in reverse order of registration. A
/// registration that throws is logged and the others still run. Does nothing when `appState`
/// is not above the current state. Any thread.
void SetAppState(int appState);

/// The current state; 0 until the host sets one. Any thread.
int GetAppState();

/// True once the state has reached `appState` or gone past it. Any thread.
bool HasReachedAppStateAlready(int appState);

/// Returns the process to its state at load: runs the destroy-registrations still pending
/// (newest first, so lazy singletons are destroyed and may be made again), puts the state
/// back to 0 and drops every prepare-to-quit factory. For tests; any thread.
void ResetForTesting();

}  // namespace kelcore::appstatemanager
