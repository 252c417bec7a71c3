#include "host/page.h"

#include <QWebFrame>
#include <stdexcept>

#include "host/stage.h"

namespace {

std::string utf8(const QString& text) { return text.toUtf8().toStdString(); }

}  // namespace

WitnessedWebPage::WitnessedWebPage(Conversation& conversation, std::string name)
    : conversation_(conversation), name_(std::move(name)) {}

void WitnessedWebPage::javaScriptConsoleMessage(const QString& message, int, const QString&) {
    conversation_.add({name_, "console", utf8(message)});
}

Page::Page(Conversation& conversation, std::string name)
    : conversation_(conversation), name_(std::move(name)) {
    auto* const page = new WitnessedWebPage(conversation, name_);
    page->setParent(&view_);
    view_.setPage(page);
    connect(page->mainFrame(), &QWebFrame::javaScriptWindowObjectCleared, this,
            [this, page] { page->mainFrame()->addToJavaScriptWindowObject("stage", this); });
    view_.resize(1120, 870);
    view_.show();
}

void Page::load(const QUrl& url) {
    bool ended = false;
    bool good = false;
    const auto connection = connect(&view_, &QWebView::loadFinished, this, [&](bool ok) {
        ended = true;
        good = ok;
    });
    view_.load(url);
    waitUntil([&ended] { return ended; });
    disconnect(connection);
    if (!good) {
        throw std::runtime_error("the browser could not load " + utf8(url.toString()));
    }
}

void Page::open(const std::string& url) {
    conversation_.add({"user", name_, "opens it"});
    load(QUrl(QString::fromStdString(url)));
}

void Page::leave() {
    conversation_.add({"user", name_, "leaves it"});
    load(QUrl("about:blank"));
}

QVariant Page::run(const std::string& script) {
    return view_.page()->mainFrame()->evaluateJavaScript(QString::fromStdString(script));
}

void Page::press(const std::string& button) {
    conversation_.add({"user", name_, "presses " + button});
    run("document.getElementById('" + button + "').click()");
}

void Page::photograph(const std::string& path) {
    run("if (window.refresh) refresh()");
    if (!view_.grab().save(QString::fromStdString(path), "PNG")) {
        throw std::runtime_error("cannot write the picture " + path);
    }
}

void Page::waitUntilClosed() {
    while (view_.isVisible()) {
        waitUntil([this] { return !view_.isVisible(); });
    }
}

void Page::heard(const QString& call) { conversation_.add({"plug-in", name_, gist(utf8(call))}); }

void Page::replied(const QString& text) { conversation_.add({name_, "plug-in", gist(utf8(text))}); }

void Page::shows(const QString& text) { conversation_.add({name_, "user", gist(utf8(text))}); }

void Page::killService() { killTheService(); }
