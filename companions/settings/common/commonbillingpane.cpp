#include "companions/settings/common/commonbillingpane.h"

#include "companions/settings/common/commontexts.h"
#include "platform/basic/failure.h"
#include "platform/locale/locale.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>

namespace hourbook {

using namespace Qt::StringLiterals;
namespace texts = commontexts;

namespace {

constexpr int firstYear = 1900;  // earlier ones mean that a date is not set
constexpr int firstPossible = 2000;

bool isPortal(const QString& serverName) {
  return serverName.isEmpty() || serverName == u"0"_s;
}

QString locationLabel(const QString& serverName) {
  if (isPortal(serverName)) return texts::locationPortalLabel;
  return serverName == u"1"_s ? texts::locationFileLabel : texts::locationPlainLabel;
}

/// 1 January 2000 stands for "never": the first download asks for everything since then.
QString lastDownload(const platform::basic::Date& date) {
  if (date.year() < firstYear || date.dateOnly() == platform::basic::Date::of(firstPossible, 1, 1))
    return texts::neverDownloaded;
  const auto& locale = platform::locale::current();
  return locale.shortDate(date.date()) + u' ' + locale.longTime(date.time());
}

}  // namespace

CommonBillingPane::CommonBillingPane(CommonBuffer& buffer, std::shared_ptr<BillingDownload> download,
                                     QWidget* parent)
    : QWidget(parent), buffer_(buffer), download_(std::move(download)) {
  makeControls();
  layOut();
  connect(cmbRoad, &QComboBox::activated, this, &CommonBillingPane::takeRoad);
  takeText(txtLocation, &BillingRow::location);
  takeText(txtUser, &BillingRow::userId);
  takeText(txtPassword, &BillingRow::password);
  connect(cmdDownload, &QPushButton::clicked, this, &CommonBillingPane::download);
  reload();
}

void CommonBillingPane::makeControls() {
  const auto line = [this](const QString& label, const QString& name) {
    auto* edit = new QLineEdit(this);
    nameControl(edit, label, name);
    return edit;
  };
  cmbRoad = new QComboBox(this);
  nameControl(cmbRoad, texts::roadLabel, u"cmbRoad"_s);
  lblUnavailable = new ProblemLabel(cmbRoad, this);
  lblLocation = new QLabel(this);
  txtLocation = line(texts::locationPortalLabel, u"txtLocation"_s);
  lblLocationProblem = new ProblemLabel(txtLocation, this);
  lblUser = new QLabel(this);
  txtUser = line(texts::userPortalLabel, u"txtUser"_s);
  lblUserProblem = new ProblemLabel(txtUser, this);
  lblPassword = new QLabel(texts::passwordLabel, this);
  txtPassword = line(texts::passwordLabel, u"txtPassword"_s);
  txtPassword->setEchoMode(QLineEdit::Password);
  txtPassword->setToolTip(texts::passwordTip);
  lblPasswordProblem = new ProblemLabel(txtPassword, this);
  txtLastDownload = line(texts::lastDownloadLabel, u"txtLastDownload"_s);
  txtLastDownload->setReadOnly(true);
  lblHint = new ProblemLabel(nullptr, this);
  cmdDownload = new QPushButton(texts::download, this);
  nameControl(cmdDownload, texts::download, u"cmdDownload"_s);
  cmdDownload->setAutoDefault(false);
  lblDownload = new ProblemLabel(cmdDownload, this);
}

void CommonBillingPane::layOut() {
  auto* form = new QFormLayout(this);
  const auto row = [form](QLabel* label, QWidget* field, ProblemLabel* problem) {
    label->setBuddy(field);
    form->addRow(label, field);
    form->addRow(QString(), problem);
  };
  row(new QLabel(texts::roadLabel), cmbRoad, lblUnavailable);
  row(lblLocation, txtLocation, lblLocationProblem);
  row(lblUser, txtUser, lblUserProblem);
  row(lblPassword, txtPassword, lblPasswordProblem);
  row(new QLabel(texts::lastDownloadLabel), txtLastDownload, lblHint);
  auto* alone = new QHBoxLayout;  // no wider than its text
  alone->addWidget(cmdDownload);
  alone->addStretch();
  form->addRow(QString(), alone);
  form->addRow(QString(), lblDownload);
}

void CommonBillingPane::takeText(QLineEdit* edit, QString BillingRow::*member) {
  connect(edit, &QLineEdit::textEdited, this, [this, member](const QString& text) {
    buffer_.edited.billing.*member = text.trimmed();
    checkFields();
    Q_EMIT edited();
  });
}

void CommonBillingPane::takeRoad() {
  buffer_.edited.billing.serverName = cmbRoad->currentData().toString();
  showRoad();
  checkFields();
  Q_EMIT edited();
}

void CommonBillingPane::checkFields() {
  clearProblems();
  for (const CommonProblem& problem : buffer_.problems()) showProblem(problem);
  lblHint->show(buffer_.billingHint(), ProblemLabel::Kind::Note);
}

void CommonBillingPane::showRoad() {
  const QString& road = buffer_.edited.billing.serverName;
  lblLocation->setText(locationLabel(road));
  nameControl(txtLocation, locationLabel(road), u"txtLocation"_s);
  const QString user = isPortal(road) ? texts::userPortalLabel : texts::userQuickBooksLabel;
  lblUser->setText(user);
  nameControl(txtUser, user, u"txtUser"_s);
  // QuickBooks asks for its password itself.
  lblPassword->setVisible(isPortal(road));
  txtPassword->setVisible(isPortal(road));
  setPageChanged(buffer_.isChanged());
}

void CommonBillingPane::reloadRoads() {
  const QSignalBlocker quiet(cmbRoad);
  const QString stored = buffer_.edited.billing.serverName;
  cmbRoad->clear();
  // No road at all is the portal, too; what is stored stays as it is until another one is chosen.
  cmbRoad->addItem(texts::roadPortal, stored.isEmpty() ? QString() : u"0"_s);
  cmbRoad->addItem(texts::roadQuickBooks, u"1"_s);
  cmbRoad->addItem(texts::roadQuickBooksRemote, u"2"_s);
  if (cmbRoad->findData(stored) < 0) cmbRoad->addItem(texts::roadOther.arg(stored), stored);
  cmbRoad->setCurrentIndex(cmbRoad->findData(stored));
}

void CommonBillingPane::reload() {
  const BillingRow& row = buffer_.edited.billing;
  reloadRoads();
  txtLocation->setText(row.location);
  txtUser->setText(row.userId);
  txtPassword->setText(row.password);
  txtLastDownload->setText(lastDownload(row.lastSync));
  const bool writable = buffer_.notWritable.isEmpty() && buffer_.billingPossible;
  cmbRoad->setEnabled(writable);
  for (QLineEdit* edit : {txtLocation, txtUser, txtPassword}) edit->setReadOnly(!writable);
  clearProblems();
  lblUnavailable->show(buffer_.billingPossible ? QString() : texts::billingNeedsAccess,
                       ProblemLabel::Kind::Note);
  lblHint->show(buffer_.billingHint(), ProblemLabel::Kind::Note);
  showRoad();
}

void CommonBillingPane::setPageChanged(bool changed) {
  QString reason = texts::downloadUnable;
  if (download_) reason = download_->unable(buffer_.edited.billing.serverName);
  if (reason.isEmpty() && !buffer_.billingPossible) reason = texts::billingNeedsAccess;
  if (reason.isEmpty() && !buffer_.notWritable.isEmpty()) reason = buffer_.notWritable;
  if (reason.isEmpty() && changed) reason = texts::downloadUnsaved;
  cmdDownload->setEnabled(reason.isEmpty());
  cmdDownload->setToolTip(reason);
  lblDownload->show(reason, ProblemLabel::Kind::Note);
}

void CommonBillingPane::download() {
  QString told;
  ProblemLabel::Kind kind = ProblemLabel::Kind::Note;
  try {
    told = download_->run();
    Q_EMIT downloaded();
  } catch (const platform::Failure& failure) {
    told = failure.description();
    kind = ProblemLabel::Kind::Problem;
  }
  lblDownload->show(told, kind);
}

void CommonBillingPane::showProblem(const CommonProblem& problem) {
  if (problem.field == CommonField::BillingLocation) lblLocationProblem->show(problem.text);
  if (problem.field == CommonField::BillingUser) lblUserProblem->show(problem.text);
  if (problem.field == CommonField::BillingPassword) lblPasswordProblem->show(problem.text);
}

void CommonBillingPane::focusProblem(const CommonProblem& problem) {
  if (problem.field == CommonField::BillingLocation) txtLocation->setFocus();
  if (problem.field == CommonField::BillingUser) txtUser->setFocus();
  if (problem.field == CommonField::BillingPassword) txtPassword->setFocus();
}

void CommonBillingPane::clearProblems() {
  for (ProblemLabel* label : {lblLocationProblem, lblUserProblem, lblPasswordProblem}) label->clear();
}

}  // namespace hourbook
