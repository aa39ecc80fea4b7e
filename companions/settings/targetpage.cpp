#include "companions/settings/targetpage.h"

#include "companions/settings/places.h"
#include "companions/settings/setup.h"
#include "companions/settings/texts.h"
#include "database/DatabaseValues.h"
#include "database/modDBCode.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

#include <QAccessible>
#include <QButtonGroup>
#include <QCheckBox>
#include <QDir>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace hourbook {

using namespace Qt::StringLiterals;

TargetPage::TargetPage(SettingsSession& session) : PersonalPage(session) {
  setObjectName(u"TargetPage"_s);
  makeControls();
  layOut();
  connectControls();
  giveLetters();
}

QString TargetPage::title() const {
  return texts::targetPage;
}

void TargetPage::makeControls() {
  optTargets = new QButtonGroup(this);
  optServerKinds = new QButtonGroup(this);
  const auto option = [this](QButtonGroup* group, const QString& text, const QString& name, int id) {
    auto* button = named(new QRadioButton(text, this), text, name);
    group->addButton(button, id);
    return button;
  };
  optAccess = option(optTargets, phrases().LNGREPORTTOACCESS, u"optAccess"_s, reportToAccess);
  optServer = option(optTargets, phrases().LNGREPORTTOSQL, u"optServer"_s, reportToSqlServer);
  optAsp = option(optTargets, phrases().LNGREPORTTOASP, u"optAsp"_s, reportToAsp);
  optBilling = option(optTargets, texts::targetBilling, u"optBilling"_s, reportToBilling);
  const auto check = [this](const QString& text, const QString& name) {
    return named(new QCheckBox(text, this), text, name);
  };
  txtFolder = new QLineEdit(this);
  cmdChooseFolder =
      named(new QPushButton(texts::choose, this), phrases().LNGPICKFOLDER, u"cmdChooseFolder"_s);
  chkMakeDatabase = check(texts::makeDatabase, u"chkMakeDatabase"_s);
  cmdSetUp = named(new QPushButton(texts::setUpDatabase, this), texts::setUpDatabase, u"cmdSetUp"_s);
  cmdSetUp->setToolTip(texts::setUpDatabaseTip);
  optByLogin = option(optServerKinds, texts::byLogin, u"optByLogin"_s, 0);
  optByText = option(optServerKinds, texts::byText, u"optByText"_s, 1);
  txtServer = new QLineEdit(this);
  txtDatabase = new QLineEdit(this);
  chkIntegratedSecurity = check(phrases().LNGINTEGRATEDSECURITY, u"chkIntegratedSecurity"_s);
  txtUserName = new QLineEdit(this);
  txtPassword = new QLineEdit(this);
  txtPassword->setEchoMode(QLineEdit::Password);
  txtConnection = new QLineEdit(this);
  cmdTest = named(new QPushButton(texts::testConnection, this), texts::testConnection, u"cmdTest"_s);
  for (QPushButton* button : {cmdChooseFolder, cmdSetUp, cmdTest}) button->setAutoDefault(false);
  lblResult = new ProblemLabel(cmdTest, this);
  lblResult->setObjectName(u"lblResult"_s);
  lblFurtherNote = new ProblemLabel(nullptr, this);
  lblFurtherNote->setObjectName(u"lblFurtherNote"_s);
  lblPasswordNote = new ProblemLabel(nullptr, this);
  lblPasswordNote->setObjectName(u"lblPasswordNote"_s);
}

void TargetPage::layOut() {
  auto* all = new QVBoxLayout(this);
  auto* targets = new QGroupBox(texts::reportsGoTo, this);
  auto* column = new QVBoxLayout(targets);
  column->addWidget(optAccess);
  column->addWidget(optServer);
  ProblemLabel* line = messageLine(optServer, Field::ReportChoice);
  line->setObjectName(u"msgTarget"_s);
  column->addWidget(line);
  addUnavailable(column, optAsp, texts::reasonAsp);
  addUnavailable(column, optBilling, texts::reasonBilling);
  all->addWidget(targets);
  all->addWidget(accessGroup());
  all->addWidget(serverGroup());
  auto* row = new QHBoxLayout;
  row->addWidget(cmdTest);
  row->addStretch();
  all->addLayout(row);
  all->addWidget(lblResult);
  all->addStretch();
}

/// Shown, so that nobody looks for it, with the reason why it cannot be chosen.
void TargetPage::addUnavailable(QVBoxLayout* column, QRadioButton* button, const QString& reason) {
  button->setEnabled(false);
  button->setToolTip(reason);
  button->setAccessibleDescription(reason);
  auto* line = new ProblemLabel(nullptr, this);
  line->show(reason, ProblemLabel::Kind::Note);
  line->setEnabled(false);
  line->setIndent(button->fontMetrics().horizontalAdvance(u"000"_s));
  column->addWidget(button);
  column->addWidget(line);
}

QWidget* TargetPage::accessGroup() {
  fraAccess = new QGroupBox(phrases().LNGDATABASE, this);
  fraAccess->setObjectName(u"fraAccess"_s);
  auto* form = new QFormLayout(fraAccess);
  form->setRowWrapPolicy(QFormLayout::WrapAllRows);
  auto* row = new QHBoxLayout;
  row->addWidget(txtFolder, 1);
  row->addWidget(cmdChooseFolder);
  addField(form, texts::databaseFolder, txtFolder, row, u"txtFolder"_s, Field::DatabaseFolder);
  form->addRow(chkMakeDatabase);
  auto* alone = new QHBoxLayout;  // as wide as its text
  alone->addWidget(cmdSetUp);
  alone->addStretch();
  form->addRow(alone);
  return fraAccess;
}

QWidget* TargetPage::serverGroup() {
  fraServer = new QGroupBox(phrases().LNGSERVER, this);
  fraServer->setObjectName(u"fraServer"_s);
  auto* column = new QVBoxLayout(fraServer);
  column->addWidget(optByLogin);
  column->addWidget(optByText);
  column->addWidget(loginPanel());
  column->addWidget(textPanel());
  column->addWidget(lblPasswordNote);
  return fraServer;
}

QWidget* TargetPage::loginPanel() {
  const Phrases& p = phrases();
  pnlLogin = new QWidget(this);
  auto* form = new QFormLayout(pnlLogin);
  form->setContentsMargins({});
  form->setRowWrapPolicy(QFormLayout::WrapLongRows);
  addField(form, p.LNGSERVER, txtServer, u"txtServer"_s, Field::Server);
  addField(form, p.LNGDATABASE, txtDatabase, u"txtDatabase"_s, Field::ServerDatabase);
  form->addRow(chkIntegratedSecurity);
  addField(form, p.LNGUSERNAME, txtUserName, u"txtUserName"_s, Field::User);
  addField(form, p.LNGPASSWORD, txtPassword, u"txtPassword"_s, Field::Password);
  form->addRow(lblFurtherNote);
  return pnlLogin;
}

QWidget* TargetPage::textPanel() {
  pnlText = new QWidget(this);
  auto* form = new QFormLayout(pnlText);
  form->setContentsMargins({});
  form->setRowWrapPolicy(QFormLayout::WrapAllRows);
  addField(form, texts::connectionText, txtConnection, u"txtConnection"_s, Field::ConnectionText);
  auto* hint = new ProblemLabel(nullptr, this);
  hint->setObjectName(u"lblConnectionHint"_s);
  hint->show(texts::connectionTextHint, ProblemLabel::Kind::Note);
  hint->setTextInteractionFlags(Qt::TextSelectableByMouse);
  form->addRow(hint);
  return pnlText;
}

void TargetPage::follow(QLineEdit* edit, QString SqlServerLogin::*member, Field field) {
  connect(edit, &QLineEdit::textEdited, this, [this, member, field](const QString& text) {
    session_.buffer.sqlServer.*member = text;
    tell(field, serverTextProblem(text));
    showTest({}, false);
    edited();
  });
}

void TargetPage::connectControls() {
  connect(optTargets, &QButtonGroup::idClicked, this, &TargetPage::choose);
  connect(optServerKinds, &QButtonGroup::idClicked, this, &TargetPage::chooseServerKind);
  connect(txtConnection, &QLineEdit::textEdited, this, [this](const QString& text) {
    session_.buffer.serverText = text;
    tell(Field::ConnectionText, text.trimmed().isEmpty() ? QString() : connectionTextProblem(text));
    showTest({}, false);
    showChoice();
    edited();
  });
  follow(txtServer, &SqlServerLogin::server, Field::Server);
  follow(txtDatabase, &SqlServerLogin::database, Field::ServerDatabase);
  follow(txtUserName, &SqlServerLogin::user, Field::User);
  follow(txtPassword, &SqlServerLogin::password, Field::Password);
  connect(txtFolder, &QLineEdit::textEdited, this, [this](const QString& text) {
    session_.buffer.databaseFolder = text.trimmed();
    tell(Field::DatabaseFolder, {});
    showTest({}, false);
    edited();
  });
  connect(txtFolder, &QLineEdit::editingFinished, this, &TargetPage::lookAtFolder);
  connect(cmdChooseFolder, &QPushButton::clicked, this, &TargetPage::chooseFolder);
  connect(chkMakeDatabase, &QCheckBox::toggled, this, [this](bool on) {
    session_.buffer.makeDatabase = on;
    if (!loading_) lookAtFolder();
    edited();
  });
  connect(chkIntegratedSecurity, &QCheckBox::toggled, this, [this](bool on) {
    session_.buffer.sqlServer.trusted = on;
    showChoice();
    edited();
  });
  connect(cmdSetUp, &QPushButton::clicked, this, &TargetPage::setUp);
  connect(cmdTest, &QPushButton::clicked, this, &TargetPage::startTest);
  connect(&test_, &ConnectionTest::finished, this,
          [this](bool succeeded, const QString& text) { showTest(text, !succeeded); });
  connect(&look_, &ConnectionTest::finished, this, &TargetPage::showLook);
}

void TargetPage::choose(int target) {
  session_.buffer.reportChoice = target;
  showTest({}, false);
  showChoice();
  edited();
}

/// A text begins as what the fields say, so that it only needs what they have no place for.
void TargetPage::chooseServerKind(bool byText) {
  SettingsBuffer& buffer = session_.buffer;
  if (byText && buffer.serverText.isEmpty() && !buffer.sqlServer.server.isEmpty())
    buffer.serverText = connectionText(buffer);
  buffer.serverByText = byText;
  txtConnection->setText(buffer.serverText);
  showTest({}, false);
  showChoice();
  edited();
}

void TargetPage::chooseFolder() {
  const QString chosen =
      session_.questions.folder(this, texts::databaseFolder, session_.buffer.databaseFolder);
  if (chosen.isEmpty()) return;
  txtFolder->setText(chosen);
  session_.buffer.databaseFolder = chosen;
  lookAtFolder();
  edited();
}

/// What is made here stays, even when the window is cancelled: it was asked for by a dialog of its own.
void TargetPage::setUp() {
  const QString folder = session_.buffer.databaseFolder;
  if (const QString problem = setUpProblem(folder); !problem.isEmpty()) {
    tell(Field::DatabaseFolder, problem);
    return;
  }
  std::optional<ReportTarget> target;
  const auto failed = tolerate([&] { target = setUpDatabase(folder, session_.questions.databaseForms); });
  if (failed)
    showTest(failed->description(), true);
  else if (target)
    take(*target);
  else
    showTest(texts::setUpCancelled, false);
}

void TargetPage::take(const ReportTarget& target) {
  SettingsBuffer& buffer = session_.buffer;
  const QString folder = buffer.databaseFolder;
  buffer.makeDatabase = false;
  buffer.reportChoice = target.ReportTo;
  if (target.ReportTo == reportToSqlServer) takeServerText(buffer, target.ReportToValue);
  reload();
  lookAtFolder();
  showTest(target.ReportTo == reportToSqlServer ? texts::serverChosen.arg(folder) : texts::accessMade, false);
  edited();
}

void TargetPage::lookAtFolder() {
  showTest({}, false);
  const PlaceLook look = lookAtDatabase(session_.buffer.databaseFolder, session_.buffer.makeDatabase);
  if (look.problem.isEmpty())
    note(Field::DatabaseFolder, look.note);
  else
    tell(Field::DatabaseFolder, look.problem);
}

/// What has become of the stored folder is told as soon as it is known; a network folder may take its time.
void TargetPage::aboutToShow() {
  const SettingsBuffer& buffer = session_.buffer;
  if (buffer.reportChoice != reportToAccess || buffer.makeDatabase || buffer.databaseFolder.isEmpty()) return;
  looked_ = buffer.databaseFolder;
  look_.start([folder = looked_]() -> ConnectionTest::Answer {
    const PlaceLook look = lookAtDatabase(folder, false);
    return {look.problem.isEmpty(), look.problem.isEmpty() ? look.note : look.problem};
  });
}

void TargetPage::showLook(bool usable, const QString& text) {
  if (session_.buffer.databaseFolder != looked_ || session_.buffer.makeDatabase) return;
  if (usable)
    note(Field::DatabaseFolder, text);
  else
    tell(Field::DatabaseFolder, text);
}

void TargetPage::showChoice() {
  const SettingsBuffer& buffer = session_.buffer;
  fraAccess->setVisible(buffer.reportChoice == reportToAccess);
  fraServer->setVisible(buffer.reportChoice == reportToSqlServer);
  cmdTest->setEnabled(buffer.reportChoice == reportToAccess || buffer.reportChoice == reportToSqlServer);
  pnlLogin->setVisible(!buffer.serverByText);
  pnlText->setVisible(buffer.serverByText);
  txtUserName->setEnabled(!buffer.sqlServer.trusted);
  txtPassword->setEnabled(!buffer.sqlServer.trusted);
  const QString further = furtherParts(buffer.storedServerText);
  lblFurtherNote->show(further.isEmpty() ? further : texts::furtherParts.arg(further),
                       ProblemLabel::Kind::Note);
  const bool password = buffer.serverByText ? holdsPassword(buffer.serverText) : !buffer.sqlServer.trusted;
  lblPasswordNote->show(
      password ? texts::passwordNote.arg(QDir(session_.store.connectionFolder()).filePath(connectionFileName))
               : QString(),
      ProblemLabel::Kind::Note);
  const QString provider = providerOf(connectionText(buffer));
  const bool isAsked = buffer.reportChoice == reportToSqlServer && !provider.isEmpty();
  tell(Field::ReportChoice, isAsked && !session_.hasServerDriver() ? noDriverText(provider) : QString());
}

void TargetPage::startTest() {
  showTest(texts::testing, false);
  const SettingsBuffer& buffer = session_.buffer;
  const auto failed = tolerate([&] {
    if (buffer.reportChoice == reportToSqlServer)
      test_.start(connectionWork(connectionText(buffer), {}));
    else if (buffer.makeDatabase)
      test_.start(newDatabaseWork(buffer.databaseFolder));
    else
      test_.start(
          connectionWork(fncAccessConnection(databaseIn(buffer.databaseFolder)), buffer.databaseFolder));
  });
  if (failed) showTest(failed->description(), true);
}

void TargetPage::showTest(const QString& text, bool isProblem) {
  lblResult->show(text, isProblem ? ProblemLabel::Kind::Problem : ProblemLabel::Kind::Note);
  if (text.isEmpty()) return;
  QAccessibleEvent told(lblResult, QAccessible::Alert);
  QAccessible::updateAccessibility(&told);
}

void TargetPage::reload() {
  loading_ = true;
  const SettingsBuffer buffer = session_.buffer;
  if (QAbstractButton* button = optTargets->button(buffer.reportChoice)) button->setChecked(true);
  // Tab leads to the chosen one from the start, as it does once the user has chosen
  optServerKinds->button(buffer.serverByText ? 1 : 0)->setChecked(true);
  for (QAbstractButton* button : optTargets->buttons() + optServerKinds->buttons())
    button->setFocusPolicy(button->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
  txtFolder->setText(buffer.databaseFolder);
  chkMakeDatabase->setChecked(buffer.makeDatabase);
  txtServer->setText(buffer.sqlServer.server);
  txtDatabase->setText(buffer.sqlServer.database);
  chkIntegratedSecurity->setChecked(buffer.sqlServer.trusted);
  txtUserName->setText(buffer.sqlServer.user);
  txtPassword->setText(buffer.sqlServer.password);
  txtConnection->setText(buffer.serverText);
  loading_ = false;
  showNotes();
  showTest({}, false);
  showChoice();
}

QList<FieldText> TargetPage::problems() {
  return targetProblems(session_.buffer, session_.hasServerDriver());
}

}  // namespace hourbook
