#pragma once

#include <sys/types.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "host/conversation.h"
#include "host/page.h"
#include "host/page_server.h"

// Where a scenario plays: a portal's web server, browser windows, and the stand-in service's rules.
// Everything belongs to the sandbox that the program runs in.

/// The process that the service's pid file names; 0 without one.
pid_t servicePid();

/// Kills the service and returns when its process is gone.
void killTheService();

class Stage {
  public:
    struct Options {
        bool live = false;    ///< print the conversation
        bool window = false;  ///< a person looks on: wait at the picture until the window closes
        std::string picture;  ///< where the picture goes; none when empty
    };

    explicit Stage(Options options);

    Conversation& conversation() { return conversation_; }

    /// The rules that the service follows when it starts next (see service/behaviour.h).
    void rules(std::initializer_list<std::string> lines);

    /// Starts the service as some other program would have done.
    void startService();

    /// Takes the service program out of the bundle.
    void removeService();

    /// Opens a new window with the portal page; `query` is what stands behind its name.
    Page& openPortal(const std::string& query);

    /// Opens a new window with a page of the scenario's own.
    Page& openCase(const std::string& html);

    /// Takes the picture; with a person looking on it stays until the window is closed.
    void show(Page& page);

    /// Throws std::runtime_error unless the plug-in signals the service to end and it does.
    void expectServiceStopped();

    /// Throws std::runtime_error when the service's process does not end soon.
    void expectServiceGone();

    /// Throws std::runtime_error when the service's process is gone.
    void expectServiceRuns() const;

    /// Returns when what was under way between engine and plug-in has come to rest: a page of the
    /// web server has been fetched meanwhile.
    void settle();

  private:
    Page& newPage();

    Options options_;
    Conversation conversation_;
    PageServer server_;
    std::vector<std::unique_ptr<Page>> pages_;
};
