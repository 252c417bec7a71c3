#pragma once

// The plug-in's one way to its log, nevo_plugin.log in the user's logs folder. All of it does
// nothing while the process has no log object.

/// Opens the log at the level that the user's settings give to the plug-in and writes the banner.
/// Called again for every page instance; an open log stays open.
void PluginOpenLog();

/// Writes one message, formatted with printf rules; it carries its own line end.
///
/// `level` documents what the line is for and does not filter: 0 errors and banners, 1 a service
/// found running, 2 milestones, 3 details, 4 traces, 5 parameter values. A line that cannot be
/// formatted for lack of memory is lost; nothing is ever thrown.
void PluginWriteLog(int level, const char* format, ...) noexcept
    __attribute__((format(printf, 2, 3)));

/// Closes the log. Never throws.
void PluginCloseLog() noexcept;
