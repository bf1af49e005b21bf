#include "zelkinstagingfolder_p.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <system_error>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString kPrefix = QStringLiteral(".zelkin-post-");

// Two processes that publish the same target at once make it appear and
// disappear under each other; each change of side costs one attempt.
constexpr int kAttempts = 16;

QByteArray Native(const QString& path)
{
    return QFile::encodeName(path);
}

// 0 when done, else the system's error number.
int Rename(const QString& from, const QString& to, unsigned int flags)
{
    const int result = ::renameat2(AT_FDCWD, Native(from).constData(), AT_FDCWD, Native(to).constData(), flags);
    return result == 0 ? 0 : errno;
}

// The kernel or the file system does not know the rename asked for.
bool IsUnsupported(int error)
{
    return error == EINVAL || error == ENOSYS;
}

bool IsTaken(int error)
{
    return error == EEXIST || error == ENOTEMPTY;
}

void RemoveAll(const QString& path)
{
    if (path.isEmpty())
        return;
    // Symbolic links inside are removed, never followed.
    std::error_code ignored;
    std::filesystem::remove_all(std::filesystem::path(Native(path).toStdString()), ignored);
}

bool IsRealFolder(const QString& path)
{
    struct stat status;
    return ::lstat(Native(path).constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

// The process that made the staging folder `name`; 0 when the name is none.
qint64 OwnerOf(const QString& name)
{
    static const QRegularExpression kStagingName(QStringLiteral("^\\.zelkin-post-([1-9][0-9]{0,9})-[0-9a-z]+$"));
    const QRegularExpressionMatch match = kStagingName.match(name);
    const qint64 pid = match.hasMatch() ? match.captured(1).toLongLong() : 0;
    return pid <= std::numeric_limits<pid_t>::max() ? pid : 0;
}

bool HasEnded(qint64 pid)
{
    return ::kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH;
}

// What a post that was killed left: nobody else will ever remove it.
void RemoveAbandoned(const QString& parent)
{
    const QDir folder(parent);
    const QDir::Filters filters = QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot | QDir::NoSymLinks;
    for (const QString& name : folder.entryList({kPrefix + QLatin1Char('*')}, filters)) {
        const qint64 owner = OwnerOf(name);
        if (owner > 0 && HasEnded(owner))
            RemoveAll(folder.filePath(name));
    }
}

QString NewStagingName()
{
    return kPrefix + QString::number(::getpid()) + QLatin1Char('-')
        + QString::number(QRandomGenerator::system()->generate64(), 36);
}

// So that a power cut, not only a kill, finds the folder's entries where
// the renames put them.
void Sync(const QString& folder)
{
    const int descriptor = ::open(Native(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
}

} // namespace

ZELKinStagingFolder::ZELKinStagingFolder(const QString& parent, const QString& name)
    : parentPath(parent)
    , targetPath(QDir(parent).filePath(name))
{
}

ZELKinStagingFolder::~ZELKinStagingFolder()
{
    if (!published)
        RemoveAll(stagingPath);
}

bool ZELKinStagingFolder::Create()
{
    RemoveAbandoned(parentPath);
    return CheckTarget() && MakeStagingFolder();
}

QString ZELKinStagingFolder::GetPath() const
{
    return stagingPath;
}

bool ZELKinStagingFolder::Publish()
{
    Sync(stagingPath);
    int error = 0;
    int attempts = 0;
    // ENOENT and EEXIST: another process took the target away or put one
    // there since the last rename.
    do
        error = PutInPlace();
    while (++attempts < kAttempts && (error == ENOENT || IsTaken(error)));
    if (error != 0) {
        RestoreAside();
        return Fail(error);
    }
    published = true;
    Sync(parentPath);
    // What stood at the target before, wherever it went.
    RemoveAll(stagingPath);
    RemoveAll(asidePath);
    return true;
}

QString ZELKinStagingFolder::GetErrorString() const
{
    return errorString;
}

bool ZELKinStagingFolder::CheckTarget()
{
    struct stat status;
    if (::lstat(Native(targetPath).constData(), &status) == 0)
        return S_ISDIR(status.st_mode) || Fail(ENOTDIR);
    return errno == ENOENT || Fail(errno);
}

bool ZELKinStagingFolder::MakeStagingFolder()
{
    const QString path = QDir(parentPath).filePath(NewStagingName());
    if (::mkdir(Native(path).constData(), 0777) != 0)
        return Fail(errno);
    stagingPath = path;
    return true;
}

int ZELKinStagingFolder::PutInPlace()
{
    int error = MoveInPlace();
    if (IsTaken(error))
        error = SwapWithTarget();
    if (IsUnsupported(error)) {
        error = MoveTargetAside();
        if (error == 0)
            error = MoveInPlace();
    }
    return error;
}

int ZELKinStagingFolder::MoveInPlace()
{
    const int error = Rename(stagingPath, targetPath, RENAME_NOREPLACE);
    // A plain rename replaces a folder only when it is empty.
    return IsUnsupported(error) ? Rename(stagingPath, targetPath, 0) : error;
}

int ZELKinStagingFolder::SwapWithTarget()
{
    const int error = Rename(stagingPath, targetPath, RENAME_EXCHANGE);
    if (error != 0 || IsRealFolder(stagingPath))
        return error;
    // What was swapped out is no folder of ours to delete: it goes back.
    Rename(stagingPath, targetPath, RENAME_EXCHANGE);
    return ENOTDIR;
}

int ZELKinStagingFolder::MoveTargetAside()
{
    if (!IsRealFolder(targetPath))
        return ENOTDIR;
    // An old folder that an earlier attempt moved aside, before another
    // process put its own in place.
    RemoveAll(asidePath);
    asidePath = QDir(parentPath).filePath(NewStagingName());
    return Rename(targetPath, asidePath, 0);
}

void ZELKinStagingFolder::RestoreAside()
{
    // Unless another process has put its folder there meanwhile.
    if (!asidePath.isEmpty())
        Rename(asidePath, targetPath, 0);
}

bool ZELKinStagingFolder::Fail(int error)
{
    errorString = qt_error_string(error);
    return false;
}
