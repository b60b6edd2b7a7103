#pragma once

class CVDefaultPreferences;
struct CaptureOptions;

/// Brings what the command line was asked for into the settings of its run and, for the paper, into
/// the shared page set-up. The options may come in any order: it is decided here which of the
/// settings that are tied together has the last word.
void applyOptions(const CaptureOptions& options, CVDefaultPreferences& settings);
