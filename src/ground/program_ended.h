#pragma once

namespace lotwise {

// Thrown when the program ends: after a fatal error has been shown and
// logged, or when the user exits. It unwinds to the front that ran the
// command, which shuts the program down (EndProgram); code after the call
// that ended the program is never reached. Deliberately no std::exception,
// so that no handler of ordinary errors takes it for one.
struct ProgramEnded {};

}  // namespace lotwise
