-- The database of Hourbook on a Microsoft SQL Server.
--
-- The program runs this file when a new database is asked for. It sends what stands between two separator
-- lines by itself, and puts the chosen name in wherever "Hourbook3SQL" stands. The separator is made of two
-- capital letters, which must stand next to each other nowhere else in this file, in no word either.
-- To run it by hand: sqlcmd -S server -i CreateDBHB.sql

CREATE DATABASE [Hourbook3SQL]
GO
USE [Hourbook3SQL]
GO
CREATE TABLE [tblPersons] (
  [intPersonID] [int] IDENTITY (1, 1) NOT NULL CONSTRAINT [PK_tblPersons] PRIMARY KEY,
  [strPersonName] [nvarchar] (255) NULL,
  [strPersonCategory] [nvarchar] (255) NULL
)
GO
CREATE TABLE [tblMeta1] (
  [intMeta1ID] [int] IDENTITY (1, 1) NOT NULL CONSTRAINT [PK_tblMeta1] PRIMARY KEY,
  [strName] [nvarchar] (255) NULL,
  [strCategory] [nvarchar] (255) NULL,
  [strSuperCategory] [nvarchar] (255) NULL,
  [curRate] [money] NULL,
  [blnEnabled] [bit] NULL
)
GO
CREATE TABLE [tblMeta2] (
  [intMeta2ID] [int] IDENTITY (1, 1) NOT NULL CONSTRAINT [PK_tblMeta2] PRIMARY KEY,
  [strName] [nvarchar] (255) NULL,
  [strCategory] [nvarchar] (255) NULL,
  [strSuperCategory] [nvarchar] (255) NULL,
  [curRate] [money] NULL,
  [blnEnabled] [bit] NULL
)
GO
CREATE TABLE [tblMeta3] (
  [intMeta3ID] [int] IDENTITY (1, 1) NOT NULL CONSTRAINT [PK_tblMeta3] PRIMARY KEY,
  [strName] [nvarchar] (255) NULL,
  [strCategory] [nvarchar] (255) NULL,
  [strSuperCategory] [nvarchar] (255) NULL,
  [curRate] [money] NULL,
  [blnEnabled] [bit] NULL
)
GO
CREATE TABLE [tblReports] (
  [intReportID] [int] IDENTITY (1, 1) NOT NULL CONSTRAINT [PK_tblReports] PRIMARY KEY,
  [numHours] [real] NULL,
  [strSubject] [nvarchar] (255) NULL,
  [strMonthName] [nvarchar] (255) NULL,
  [strWeekdayName] [nvarchar] (255) NULL,
  [dtmDate] [datetime] NULL,
  [curCost] [money] NULL,
  [dteReported] [datetime] NULL,
  [intPersonID] [int] NULL CONSTRAINT [PersonReports] REFERENCES [tblPersons] ([intPersonID]),
  [intMeta1ID] [int] NULL CONSTRAINT [Meta1Reports] REFERENCES [tblMeta1] ([intMeta1ID]),
  [intMeta2ID] [int] NULL CONSTRAINT [Meta2Reports] REFERENCES [tblMeta2] ([intMeta2ID]),
  [intMeta3ID] [int] NULL CONSTRAINT [Meta3Reports] REFERENCES [tblMeta3] ([intMeta3ID]),
  [strBody] [text] NULL
)
GO
CREATE TABLE [tblSettings] (
  [intSettingsID] [int] IDENTITY (1, 1) NOT NULL CONSTRAINT [PK_tblSettings] PRIMARY KEY,
  [intCostCarrier] [smallint] NULL,
  [intReportTo] [smallint] NULL,
  [strReportToValue] [nvarchar] (255) NULL
)
GO
CREATE TABLE [tblMetaLists] (
  [intMetaListID] [int] IDENTITY (1, 1) NOT NULL CONSTRAINT [PK_tblMetaLists] PRIMARY KEY,
  [strMetaListCaption] [nvarchar] (255) NULL,
  [strMetaListCategoryCaption] [nvarchar] (255) NULL,
  [strMetaListSuperCategoryCaption] [nvarchar] (255) NULL
)
GO
CREATE TABLE [tblOtherSettings] (
  [intSettingID] [int] IDENTITY (1, 1) NOT NULL CONSTRAINT [PK_tblOtherSettings] PRIMARY KEY,
  [strPropName] [varchar] (255) NULL,
  [strPropValue] [text] NULL
)
