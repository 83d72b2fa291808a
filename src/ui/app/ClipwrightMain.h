#pragma once

// Runs the desktop program: application object, main window, event loop.
int clipwrightMain(int argc, char** argv);
