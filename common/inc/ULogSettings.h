#pragma once

/// The settings file that all client components of a user share: log levels and the size at which
/// a log file is rotated. It is "zerva.conf" in the folder of `getZervaFolderPath`.
///
/// One setting a line, recognised by its exact beginning; anything else in the file is inert.
/// Values are read as by `SScanInt`. Levels are BASIC 0 to 31, EXTENDED 32 to 63, but no number is
/// refused. Lines are read in pieces of up to 255 characters, each tested as a line of its own.
///
/// Every call reads the file afresh, so a change by hand takes effect at the next one. Nothing
/// reports an error or raises: what cannot be read, be it for lack of memory, has its default, and
/// what cannot be written stays as it is. Any thread may call, and several processes do, without a
/// lock: writers may interleave.
class ULogSettings {
  public:
    ULogSettings() = delete;

    /// @return the level of the first "default_log_level=" line, or 63. Makes a missing file,
    /// unless the process runs as root.
    static unsigned int getLogLevel();

    /// @return the level of the last line that begins with `module` and "_log_level="; without one,
    /// or when it says -1, that of the last "default_log_level=" line, or 63. `module` may be null.
    /// Makes a missing file like `getLogLevel`.
    static unsigned int getModuleLogLevel(const char* module);

    /// Writes `level` over the first "default_log_level=" line, in place: what a longer old line
    /// leaves over stays behind it, and a longer new one covers the start of the next line. A file
    /// without such a line gets one at its end; a missing file is made from a template. The file's
    /// mode becomes 0600. Does nothing when the process runs as root: the file is the user's.
    /// `reserved` is ignored.
    static void setLogLevel(unsigned int level, unsigned int reserved);

    /// As `setLogLevel`: sets the default level of all modules, whatever `module` is.
    static void setModuleLogLevel(const char* module, unsigned int level);

    /// @return the size in bytes on the first "log_file_size" line, which stands behind one
    /// separator character, or 5242880.
    static unsigned int getFileRotationSize();
};
