// Signals that end a batch between two of its rows.
#pragma once

// While one lives, the first of SIGINT, SIGTERM and SIGHUP asks for the end, and a second one does what it did before.
class BatchEnding {
public:
    BatchEnding();
    ~BatchEnding();
    BatchEnding(const BatchEnding&) = delete;
    BatchEnding& operator=(const BatchEnding&) = delete;

    // The signal that came, 0 for none; to be raised again when this is gone.
    static int number();
};
