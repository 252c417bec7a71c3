#pragma once

#include <QString>
#include <QVariant>
#include <QWebPage>
#include <QWebView>
#include <string>

#include "host/conversation.h"

/// The engine's page; what its scripts print joins the conversation.
class WitnessedWebPage : public QWebPage {
    Q_OBJECT

  public:
    WitnessedWebPage(Conversation& conversation, std::string name);

  protected:
    void javaScriptConsoleMessage(const QString& message, int line, const QString& source) override;

  private:
    Conversation& conversation_;
    std::string name_;
};

/// One window of the browser with one page in it. Page scripts see it as `window.stage` and tell it
/// what passes.
class Page : public QObject {
    Q_OBJECT

  public:
    /// `name` is what the conversation calls it; `conversation` outlives it.
    Page(Conversation& conversation, std::string name);

    /// Loads the URL and returns when it is there; throws std::runtime_error when it cannot be had.
    void open(const std::string& url);

    /// Goes to an empty page.
    void leave();

    /// The value of the script.
    QVariant run(const std::string& script);

    /// Presses the button of that id.
    void press(const std::string& button);

    /// Writes the window's picture as a PNG.
    void photograph(const std::string& path);

    /// Waits until the person has closed the window.
    void waitUntilClosed();

    // For page scripts.
    Q_INVOKABLE void heard(const QString& call);    ///< the plug-in called the page
    Q_INVOKABLE void replied(const QString& text);  ///< what the page gave back
    Q_INVOKABLE void shows(const QString& text);    ///< what the person reads
    Q_INVOKABLE void killService();                 ///< returns when the service is gone

  private:
    void load(const QUrl& url);

    Conversation& conversation_;
    std::string name_;
    QWebView view_;
};
