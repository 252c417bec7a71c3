#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "launcher.h"
#include "plugin_test.h"
#include "service_files.h"

// Calls of the launcher and what they leave to see.

class Launcher : public PluginTest {
  protected:
    Launcher() { removeServiceFiles(); }
    ~Launcher() override { removeServiceFiles(); }

    static int start(const char* text = "text") { return LaunchVPN(text, 0); }
    static int stop() { return LaunchVPN("text", 1); }

    // The lines of a start that did not say anything about the pid file.
    static std::vector<std::string> startLines(const std::string& last) {
        return {"[LaunchVPN] ('text', '0')\n", last};
    }

    // The facts of one kind that the program noted down.
    static std::vector<std::string> noted(const std::string& kind) {
        std::vector<std::string> facts;
        std::istringstream report(serviceReport());
        for (std::string line; std::getline(report, line);) {
            if (line.rfind(kind + " ", 0) == 0) facts.push_back(line.substr(kind.size() + 1));
        }
        return facts;
    }

    // How the program's descriptors stand to the launch pipe: "NUMBER MODE" for each of its ends.
    static std::vector<std::string> notedPipeEnds() {
        std::vector<std::string> ends;
        std::string pipe;
        for (const std::string& fact : noted("descriptor")) {
            std::istringstream words(fact);
            std::string number;
            std::string target;
            std::string mode;
            words >> number >> target >> mode;
            if (number == "0" && target.rfind("pipe:", 0) == 0) pipe = target;
            if (!pipe.empty() && target == pipe) ends.push_back(number + " " + mode);
        }
        return ends;
    }
};

/// The line about a pid file whose process is not the service.
inline std::string notOwner(int pid) {
    return "[LaunchVPN] nevo.pid file is exist, but nevo is not owner of the pid, pid='" +
           std::to_string(pid) + "'\n";
}
