#pragma once

#include <wx/splash.h>
#include <wx/weakref.h>

#include <chrono>

#include "core/Texts.h"

namespace tavlo {

/// Shows that the program is coming, but only where that takes longer than half a second.
class Splash {
 public:
    /// `start`: when the process began.
    Splash(const Texts& texts, std::chrono::steady_clock::time_point start)
        : texts_(texts), start_(start) {}
    Splash(const Splash&) = delete;
    Splash& operator=(const Splash&) = delete;
    ~Splash() { end(); }

    /// To be called between the steps of loading: shows itself when it is time.
    void look();
    void end();

 private:
    const Texts& texts_;
    const std::chrono::steady_clock::time_point start_;
    wxWeakRef<wxSplashScreen> frmSplash_;  // a click or a key takes it away
    bool wasShown_ = false;
};

}  // namespace tavlo
