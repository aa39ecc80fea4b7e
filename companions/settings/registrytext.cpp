#include "companions/settings/registrytext.h"

#include "companions/settings/guarded.h"
#include "companions/settings/texts.h"
#include "outlook/OutlookValues.h"
#include "platform/basic/convert.h"
#include "platform/registry/ini/initext.h"
#include "platform/registry/registry.h"
#include "settings/cPersonalSettings.h"
#include "shell/modRegistryEntry.h"
#include "shell/Tolerate.h"

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::Failure;
using platform::basic::Value;
using platform::registry::Registry;

namespace {

const QString section = u"Settings"_s;

/// A text that begins with "@" stands with a second one, since types are marked so.
QString marked(const QString& text) {
  return text.startsWith(u'@') ? u'@' + text : text;
}

/// A registry in memory that begins with the entries of a file and notes what is set. Texts alone.
class NotingRegistry : public Registry {
 public:
  int openKey(const QString&) override { return platform::registry::codeSuccess; }
  int setValue(const QString& key, const QString& name, const Value& value) override {
    noted.append({platform::registry::entryName(key, name), marked(platform::basic::CStr(value))});
    return platform::registry::codeSuccess;
  }
  int value(const QString& key, const QString& name, Value* out) override {
    const auto found = entries.constFind(platform::registry::entryName(key, name).toLower());
    if (found == entries.cend()) return platform::registry::codeNotFound;
    *out = *found;
    return platform::registry::codeSuccess;
  }
  QString lastError() const override { return {}; }

  QHash<QString, QString> entries;  // by name in small letters
  QList<QPair<QString, QString>> noted;
};

QString unmarked(const QString& text) {
  return text.startsWith(u"@@"_s) ? text.mid(1) : text;
}

}  // namespace

struct RegistryText::Copy : NotingRegistry {};

RegistryText::RegistryText(const QByteArray& bytes, const QString& path) : copy_(std::make_unique<Copy>()) {
  QString error = platform::registry::iniFault(bytes);
  const auto entries = error.isEmpty() ? platform::registry::parseIni(bytes, &error) : std::nullopt;
  if (!entries) throw Failure(platform::failure::typeMismatch, path + u": "_s + error);
  for (auto it = entries->cbegin(); it != entries->cend(); ++it)
    copy_->entries.insert(it.key().toLower(), unmarked(*it));
}

RegistryText::~RegistryText() = default;

QString RegistryText::text(const QString& name, const QString& otherwise) const {
  const platform::registry::ScopedRegistry inForce(*copy_);
  return fncGetRegistryValue(section, name, otherwise);
}

bool RegistryText::has(const QString& name) const {
  const QString none = u"NULL"_s;
  return text(name, none) != none;
}

bool RegistryText::boolean(const QString& name, Field field, QList<FieldText>& notes) const {
  const QString stored = text(name, u"true"_s);
  bool value = false;
  if (tolerate([&] { value = platform::basic::CBool(stored); }))
    notes.append({field, texts::unreadable.arg(stored, texts::notABoolean)});
  return value;
}

QString RegistryText::number(const QString& name, Field field, const QString& usual,
                             QList<FieldText>& notes) const {
  const QString stored = text(name, usual);
  if (platform::basic::IsNumeric(stored)) return stored;
  notes.append({field, texts::unreadable.arg(stored, texts::notNumeric)});
  return usual;
}

QByteArray registryWith(const QByteArray& bytes, const cPersonalSettings& settings) {
  NotingRegistry registry;
  {
    const platform::registry::ScopedRegistry inForce(registry);
    const Shared<OutlookValues>::Scope withoutCalendar;  // so that only the registry is written
    guarded([&] { settings.SaveSettings(); });
  }
  QString error;
  const auto written = platform::registry::withEntries(bytes, registry.noted, &error);
  if (!written) throw Failure(platform::failure::permissionDenied, error);
  return *written;
}

}  // namespace hourbook
