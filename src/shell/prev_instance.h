#pragma once

namespace corvane {

// Tells whether another instance of the program runs (a named mutex of ours,
// held for the life of the process).
bool EarlierInstanceRunning();

// Brings the earlier instance's main window back and to the front.
class clsPrevInstance {
public:
    // `ownAppWindow` is this instance's hidden application window.
    explicit clsPrevInstance(void* ownAppWindow) : ownAppWindow_(ownAppWindow) {}
    void ShowApp();

private:
    void* ownAppWindow_;
};

}  // namespace corvane
