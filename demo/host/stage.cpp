#include "host/stage.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <QWebSettings>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

#include "service/behaviour.h"

namespace {

constexpr const char* kService =
    "/Library/Internet Plug-Ins/Zerva SSL VPN Plugin.plugin/Contents/Helpers/nevo";
constexpr const char* kPidFile = "/Library/Application Support/Zerva/nevo/var/run/nevo.pid";

bool isGone(pid_t pid) { return kill(pid, 0) != 0 && errno == ESRCH; }

std::string pageFolder() {
    const char* const folder = std::getenv("ZERVA_DEMO_PAGE");
    if (folder == nullptr) {
        throw std::runtime_error("ZERVA_DEMO_PAGE is not set; demo/on-stage sets the stage");
    }
    return folder;
}

}  // namespace

pid_t servicePid() {
    pid_t pid = 0;
    std::ifstream(kPidFile) >> pid;
    return pid;
}

void killTheService() {
    const pid_t pid = servicePid();
    kill(pid, SIGKILL);
    // Until it has been collected, its entry in the process table answers as if it ran.
    while (!isGone(pid)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

Stage::Stage(Options options)
    : options_(std::move(options)), conversation_(options_.live), server_(pageFolder()) {
    QWebSettings::globalSettings()->setAttribute(QWebSettings::PluginsEnabled, true);
}

void Stage::rules(std::initializer_list<std::string> lines) {
    const std::filesystem::path path(Behaviour::file());
    std::filesystem::create_directories(path.parent_path());
    std::ofstream output(path);
    for (const std::string& line : lines) {
        output << line << '\n';
    }
}

void Stage::startService() {
    std::FILE* const input = popen(("exec '" + std::string(kService) + "'").c_str(), "w");
    if (input == nullptr) {
        throw std::runtime_error("cannot start the service");
    }
    std::fputs("started by somebody else", input);
    pclose(input);
}

void Stage::removeService() { std::filesystem::remove(kService); }

Page& Stage::newPage() {
    const std::string name = pages_.empty() ? "page" : "page " + std::to_string(pages_.size() + 1);
    pages_.push_back(std::make_unique<Page>(conversation_, name));
    return *pages_.back();
}

Page& Stage::openPortal(const std::string& query) {
    Page& page = newPage();
    page.open(server_.root() + "/" + query);
    return page;
}

Page& Stage::openCase(const std::string& html) {
    server_.setCase(html);
    Page& page = newPage();
    page.open(server_.root() + "/case");
    return page;
}

void Stage::show(Page& page) {
    if (!options_.picture.empty()) {
        page.photograph(options_.picture);
    }
    if (options_.window) {
        page.waitUntilClosed();
        conversation_.skipAll();
    }
}

void Stage::expectServiceStopped() {
    expectServiceGone();
    if (!conversation_.has("plug-in -> service: signal 15")) {
        throw std::runtime_error("the service ended without the plug-in's signal");
    }
}

void Stage::expectServiceGone() {
    QTimer look;
    look.start(5);
    if (!waitUntil([] { return isGone(servicePid()); })) {
        throw std::runtime_error("the service still runs");
    }
}

void Stage::expectServiceRuns() const {
    if (servicePid() == 0 || isGone(servicePid())) {
        throw std::runtime_error("the service no longer runs");
    }
}

void Stage::settle() {
    QNetworkAccessManager network;
    for (int round = 0; round < 3; ++round) {
        const std::unique_ptr<QNetworkReply> reply(
            network.get(QNetworkRequest(QUrl(QString::fromStdString(server_.root() + "/case")))));
        waitUntil([&reply] { return reply->isFinished(); });
    }
}
