#pragma once

/// The library's shortcuts to `errorLog`, each with a level of its own. A text is formatted by the
/// rules of `printf` and cut to 2047 characters; a null format, and a text that the C library
/// cannot format, give "ERRORLOGLEVELx() wrong parameter". Texts carry their own line ends.
///
/// Any thread may call. Nothing is written while `errorLog` is null; nothing is raised
/// but what a log object of another make raises.

/// Writes with priority 1, at any level.
void ERRORLOGLEVEL0(const char* format, ...) __attribute__((format(printf, 1, 2)));
/// Writes with priority 2 when the log's level is at least 2.
void ERRORLOGLEVEL1(const char* format, ...) __attribute__((format(printf, 1, 2)));
/// Writes with priority 48 when the log's level is at least 48.
void ERRORLOGLEVEL2(const char* format, ...) __attribute__((format(printf, 1, 2)));
/// These write nothing at any level.
void ERRORLOGLEVEL3(const char* format, ...) __attribute__((format(printf, 1, 2)));
void ERRORLOGLEVEL4(const char* format, ...) __attribute__((format(printf, 1, 2)));
void ERRORLOGLEVEL5(const char* format, ...) __attribute__((format(printf, 1, 2)));
