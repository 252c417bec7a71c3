#include "capturing_log.h"

#include <algorithm>
#include <iterator>

namespace {

bool isLine(const std::string& event) { return event.empty() || event.front() != '<'; }

}  // namespace

int CapturingLog::keep(std::string event) {
    m_events.push_back(std::move(event));
    return 0;
}

int CapturingLog::Open(const char* name, const char* mode) {
    return keep("<Open(" + std::string(name) + ", " + mode + ")>");
}

int CapturingLog::Close() { return keep("<Close()>"); }

int CapturingLog::WriteLogStr(const char* text) { return keep(text); }

int CapturingLog::WriteLogStr(int priority, const char* text) {
    return keep("<WriteLogStr(" + std::to_string(priority) + ", " + text + ")>");
}

int CapturingLog::WriteErrorStr(const char* text) {
    return keep("<WriteErrorStr(" + std::string(text) + ")>");
}

int CapturingLog::WriteLogByte(unsigned char*, unsigned int length) {
    return keep("<WriteLogByte(" + std::to_string(length) + ")>");
}

int CapturingLog::WriteLogByte(const char* text, unsigned char*, unsigned int length) {
    return keep("<WriteLogByte(" + std::string(text) + ", " + std::to_string(length) + ")>");
}

int CapturingLog::WriteLogItem(const char* text) {
    return keep("<WriteLogItem(" + std::string(text) + ")>");
}

int CapturingLog::SetLogLevel(int level) {
    m_level = level;
    return keep("<SetLogLevel(" + std::to_string(level) + ")>");
}

void CapturingLog::setParam(const char* name, const char* value) {
    keep("<setParam(" + std::string(name) + ", " + value + ")>");
}

std::vector<std::string> CapturingLog::lines() const {
    std::vector<std::string> found;
    std::copy_if(m_events.begin(), m_events.end(), std::back_inserter(found), isLine);
    return found;
}

std::vector<std::string> CapturingLog::linesStarting(const std::string& start) const {
    std::vector<std::string> found = lines();
    std::erase_if(found, [&](const std::string& line) { return line.rfind(start, 0) != 0; });
    return found;
}

bool CapturingLog::contains(const std::string& part) const {
    return std::any_of(m_events.begin(), m_events.end(), [&](const std::string& event) {
        return event.find(part) != std::string::npos;
    });
}
