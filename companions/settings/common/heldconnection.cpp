#include "companions/settings/common/heldconnection.h"

#include "companions/settings/common/commontexts.h"
#include "companions/settings/guarded.h"
#include "database/modDBCode.h"
#include "platform/process/process.h"
#include "platform/sql/oledbkeys.h"
#include "shell/modFileHandling.h"

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::basic::Value;
namespace ado = platform::ado;
namespace sql = platform::sql;

namespace {

constexpr qint32 targetAsp = 1;
constexpr qint32 targetServer = 3;

class LentSession : public sql::Session {
 public:
  explicit LentSession(sql::Session& real) : real_(real) {}
  sql::Result execute(const QString& statement, const QList<Value>& parameters) override {
    return real_.execute(statement, parameters);
  }
  void begin() override { real_.begin(); }
  void commit() override { real_.commit(); }
  void rollback() override { real_.rollback(); }
  QStringList tables() override { return real_.tables(); }
  QList<sql::Column> columns(const QString& table) override { return real_.columns(table); }
  QString token() override { return real_.token(); }
  void settle(const QString& token) override { real_.settle(token); }

 private:
  sql::Session& real_;
};

class LendingDriver : public sql::Driver {
 public:
  explicit LendingDriver(sql::Session& real) : real_(real) {}
  std::unique_ptr<sql::Session> connect(const sql::ConnectionString&) override {
    return std::make_unique<LentSession>(real_);
  }

 private:
  sql::Session& real_;
};

/// The database folder of a place. An ASP page is no folder: then the program's own is looked into, where the
/// copies for the page are written, too.
QString folderOf(const ReportPlace& place) {
  if (place.choice == targetServer) return {};
  if (place.choice == targetAsp || place.value.isEmpty())
    return fncStripSlash(platform::process::Process::current().programFolder());
  return fncStripSlash(place.value);
}

}  // namespace

QString placeName(const ReportPlace& place) {
  if (place.choice != targetServer) return folderOf(place);
  sql::ConnectionString connection;
  try {
    connection = sql::ConnectionString(place.value);
  } catch (const platform::Failure&) {
    return phrases().LNGSERVER;  // there may be a password in it
  }
  const QString catalog = sql::oledbkeys::database(connection);
  const QString server = sql::oledbkeys::server(connection);
  return catalog.isEmpty() ? server : catalog + u" ("_s + server + u')';
}

HeldConnection::HeldConnection(const ReportPlace& place) : settings_(std::make_unique<cGlobalSettings>()) {
  values_->gReportValue = folderOf(place);
  settings_->ReportTo = place.choice;
  settings_->ReportToValue = place.value;
  guarded([] { subSetupConnection(); });
  real_ = values_->gConnection;
  if (!real_)
    throw platform::Failure(platform::failure::pathNotFound, commontexts::noDatabase.arg(placeName(place)));
}

HeldConnection::~HeldConnection() = default;

std::unique_ptr<sql::Session> HeldConnection::sessionOver() {
  return std::make_unique<LentSession>(session());
}

void HeldConnection::lend() {
  const auto drivers = std::make_shared<sql::Drivers>();
  const QString text = real_->ConnectionString();
  drivers->add(sql::ConnectionString(text).provider(), std::make_shared<LendingDriver>(session()));
  const auto lent = std::make_shared<ado::Connection>(drivers);
  lent->setConnectionString(text);
  lent->Open();
  values_->gConnection = lent;
}

bool HeldConnection::isAccess() const {
  return sql::ConnectionString(real_->ConnectionString())
      .provider()
      .startsWith(u"Microsoft.Jet."_s, Qt::CaseInsensitive);
}

}  // namespace hourbook
