#include "host/conversation.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QSocketNotifier>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string_view>

namespace {

bool matches(std::string_view pattern, std::string_view text) {
    const std::size_t star = pattern.find('*');
    if (star == std::string_view::npos) {
        return pattern == text;
    }
    if (text.substr(0, star) != pattern.substr(0, star)) {
        return false;
    }
    for (std::size_t at = star; at <= text.size(); ++at) {
        if (matches(pattern.substr(star + 1), text.substr(at))) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool waitUntil(const std::function<bool()>& done, int milliseconds) {
    const QDeadlineTimer deadline(milliseconds);
    QTimer alarm;
    alarm.start(milliseconds);
    while (!done() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return done();
}

Conversation::Conversation(bool live) : live_(live) {
    clock_.start();
    auto* const notifier = new QSocketNotifier(stand_.descriptor(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &Conversation::hearWitnesses);
}

void Conversation::add(const Step& step) {
    // What the service said before this step waits in the socket.
    hearWitnesses();
    append(step);
}

void Conversation::hearWitnesses() {
    for (Step step; stand_.take(step);) {
        append(step);
    }
}

void Conversation::append(const Step& step) {
    entries_.push_back({static_cast<double>(clock_.nsecsElapsed()) * 1e-9, step});
    if (live_) {
        const Entry& entry = entries_.back();
        std::printf("%8.3f s  %8s -> %-8s  %s\n", entry.seconds, step.who.c_str(),
                    step.whom.c_str(), step.what.c_str());
        std::fflush(stdout);
    }
}

std::string Conversation::nextLine(const std::string& expected) {
    hearWitnesses();
    if (!waitUntil([this] { return heardOf_ < entries_.size(); })) {
        throw std::runtime_error("waited in vain for\n    " + expected);
    }
    return entries_[heardOf_++].step.line();
}

void Conversation::expect(std::initializer_list<std::string> lines) {
    for (const std::string& expected : lines) {
        const std::string line = nextLine(expected);
        if (!matches(expected, line)) {
            throw std::runtime_error("expected\n    " + expected + "\nbut there came\n    " + line);
        }
    }
}

void Conversation::skipTo(const std::string& line) {
    while (!matches(line, nextLine(line))) {
    }
}

void Conversation::skipAll() {
    hearWitnesses();
    heardOf_ = entries_.size();
}

void Conversation::forget() {
    hearWitnesses();
    entries_.clear();
    heardOf_ = 0;
}

bool Conversation::has(const std::string& line) {
    hearWitnesses();
    return std::any_of(entries_.begin(), entries_.end(),
                       [&line](const Entry& entry) { return matches(line, entry.step.line()); });
}

void Conversation::expectNothingMore() {
    hearWitnesses();
    if (heardOf_ < entries_.size()) {
        throw std::runtime_error("nobody expected\n    " + entries_[heardOf_].step.line());
    }
}

Conversation::Totals Conversation::totals() const {
    Totals totals;
    int rounds = 0;
    double first = 0;
    double last = 0;
    for (const auto& [seconds, step] : entries_) {
        if (step.whom == "plug-in") {
            ++totals.messages;
            totals.bytes += step.what.size();
        } else if (step.what.starts_with("?TRAFFIC&z=")) {
            last = seconds;
            first = rounds++ == 0 ? seconds : first;
        }
    }
    totals.roundsPerSecond = last > first ? (rounds - 1) / (last - first) : 0;
    return totals;
}
