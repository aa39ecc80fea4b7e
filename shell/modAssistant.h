#pragma once
#include <QString>

#include <memory>

namespace platform::outlook {
class Application;
}

namespace hourbook {

/// Shows a message through the application's assistant; in a plain box without an application or when that
/// fails.
void fncShowAssistantMessage(const std::shared_ptr<platform::outlook::Application>& application,
                             const QString& text);
/// Asks a yes/no question in the same way; 6 is yes. Throws when the assistant fails: the caller then asks in
/// a plain box.
int fncAskAssistant(const std::shared_ptr<platform::outlook::Application>& application, const QString& text);

}  // namespace hourbook
