#pragma once
#include "platform/basic/collection.h"
#include "platform/outlook/application.h"
#include "shell/SharedValues.h"

namespace hourbook {

struct OutlookValues {
  /// The connection; filled once by `fncConnectOutlook`.
  std::shared_ptr<platform::outlook::Application> gOutlookApp;
  std::shared_ptr<platform::outlook::NameSpace> gNameSpace;
  /// The folder that is reported from: the one open in Outlook at start. Filled by `Main`.
  std::shared_ptr<platform::outlook::MAPIFolder> gCalendarFolder;
  /// The user's name as the reports carry it. Filled by `fncGetUserName`.
  QString gCurrentUser;
  /// Major version of Outlook; 0 is not yet read.
  qint16 outlookMajorVersion = 0;
  /// The appointment behind each row of the list, under the row number as decimal text. Replaced by each fetch.
  platform::basic::Collection<std::shared_ptr<platform::outlook::AppointmentItem>> gRowItems;
};

inline OutlookValues& outlookValues() { return Shared<OutlookValues>::current(); }

}  // namespace hourbook
