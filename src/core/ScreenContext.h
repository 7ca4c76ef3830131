#pragma once
#include "Requests.h"

class CommLink;
class ConsoleState;
class Recorder;

// What every screen is given: the process-wide state with the controller
// image, the link (for its signals), and the recording. Screens reach the
// controller only through requests().
struct ScreenContext {
    ConsoleState &state;
    CommLink &link;
    Recorder &recorder;

    Requests requests() const { return Requests(state); }
};
