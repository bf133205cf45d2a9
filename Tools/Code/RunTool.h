#pragma once

#include <memory>

class Application;
class PreviewDriver;

/// The whole run of the tool on an interface layer: makes the core, brings it up, and runs the main form until it is
/// closed. An exception that gets this far is shown in a message box as "Exception: " and its text. The exit code: 0,
/// and -1 when the core doesn't come up.
int Run_Tool(Application &application, std::unique_ptr<PreviewDriver> preview);
