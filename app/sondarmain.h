#pragma once

// Parses the command line and runs the window or one of the terminal commands.
int sondarMain(int argc, char **argv);
