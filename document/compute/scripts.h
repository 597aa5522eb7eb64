// Which scripts of a form run.
#pragma once

enum class PDF_SCRIPTS {
    OFF,
    KNOWN,  // those that are one call of a well-known function
    ALL,    // the others, too, in a sandbox
};
