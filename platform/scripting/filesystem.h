#pragma once
#include <QList>
#include <QString>

#include <memory>

namespace platform::scripting {

/// Both "\" and "/" separate folders in every path given here; this gives the form the system opens.
QString systemPath(const QString& path);

class TextStream;
class File;
class Folder;

/// `Scripting.FileSystemObject`. Failures carry the component's numbers: 53 file not found, 58 file exists,
/// 70 permission denied, 76 path not found; the description names the path.
class FileSystemObject {
 public:
  virtual ~FileSystemObject() = default;
  virtual bool FileExists(const QString& path) const;
  virtual bool FolderExists(const QString& path) const;
  /// A read-only file only by force (70 otherwise). No wildcards.
  virtual void DeleteFile(const QString& path, bool force = false);
  virtual void CreateFolder(const QString& path);
  virtual std::shared_ptr<Folder> GetFolder(const QString& path);
  virtual std::shared_ptr<File> GetFile(const QString& path);
  /// The temporary folder for 2 (`TemporaryFolder`).
  virtual std::shared_ptr<Folder> GetSpecialFolder(int which);
  virtual QString GetTempName() const;  // "radXXXXX.tmp"
  /// mode 1 read, 2 write, 8 append (what other programs append before Close stays in front of the text).
  virtual std::shared_ptr<TextStream> OpenTextFile(const QString& path, int mode = 1, bool create = false);
  virtual std::shared_ptr<TextStream> CreateTextFile(const QString& path, bool overwrite = true,
                                                     bool unicode = false);
};

/// Text in the system's default encoding (UTF-8 here). Written text reaches the file on Close, at once and
/// whole; a stream that is let go without Close has written nothing. Text read before its end is there once:
/// ReadAll at the end of the stream is Failure 62, a call that the mode does not allow 54.
class TextStream {
 public:
  virtual ~TextStream() = default;
  virtual bool AtEndOfStream() const = 0;
  virtual QString ReadAll() = 0;
  virtual void Write(const QString& text) = 0;
  virtual void Close() = 0;
};

class Folder {
 public:
  explicit Folder(QString path) : path_(std::move(path)) {}
  virtual ~Folder() = default;
  QString Path() const { return path_; }  // system form
  virtual QString Name() const;
  virtual QString ShortName() const;  // equals Name where the system has no short names
  virtual bool IsRootFolder() const;
  virtual std::shared_ptr<Folder> ParentFolder() const;
  virtual QList<std::shared_ptr<Folder>> SubFolders() const;

 private:
  QString path_;
};

class File {
 public:
  explicit File(QString path) : path_(std::move(path)) {}
  virtual ~File() = default;
  QString Path() const { return path_; }
  QString Name() const;
  /// Renames the file within its folder; 58 when that name is taken, 70 when the system refuses.
  virtual void setName(const QString& name);
  std::shared_ptr<Folder> ParentFolder() const;

 private:
  QString path_;
};

}  // namespace platform::scripting
