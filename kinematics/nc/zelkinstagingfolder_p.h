#ifndef ZELKINSTAGINGFOLDER_P_H
#define ZELKINSTAGINGFOLDER_P_H

#include "zelkinematics_export.h"

#include <QString>

/*!
    A folder that is written in full under a hidden name beside its target
    and then takes the target's place in one rename, so that the target
    always holds either the complete old folder or the complete new one,
    whoever reads it and whenever the writing process is killed.

    The staging folder is named ".zelkin-post-<pid>-<random>" in the
    target's parent folder: short whatever the target's name, in the same
    file system, so that a rename can move it, and hidden from the folder
    listings of readers. Create() first removes the staging folders of
    processes that no longer run, which a kill left behind; the folders of
    live processes, this one among them, are kept.

    Publish() moves the staging folder to the target with
    renameat2(RENAME_NOREPLACE) when the target does not exist, and swaps
    the two with renameat2(RENAME_EXCHANGE) when it does; the old folder,
    now under the staging name, is then deleted. When two processes publish
    the same target at once, each retries with the other rename as the
    target appears or disappears under it, and one of the complete folders
    stays. Where the file system cannot swap two folders, the old one is
    first renamed aside: for that moment the target does not exist, and a
    kill then leaves the old folder under a staging name, which the next
    Create() there removes.

    A target that is not a folder, or a symbolic link, is refused and left
    as it is. The object removes its staging folder, with whatever it
    holds, when it is destroyed unpublished. Errors are reported as QFile
    reports them: the call returns false and GetErrorString() holds the
    system's reason.
*/
class ZELKINEMATICS_EXPORT ZELKinStagingFolder
{
public:
    //! A staging folder for the folder `name` in `parent`; nothing is made yet.
    ZELKinStagingFolder(const QString& parent, const QString& name);
    ~ZELKinStagingFolder();
    ZELKinStagingFolder(const ZELKinStagingFolder&) = delete;
    ZELKinStagingFolder& operator=(const ZELKinStagingFolder&) = delete;

    //! Removes the staging folders that ended processes left in the parent
    //! folder and makes a new, empty one. False when the target cannot be
    //! replaced (it is no folder, its name is too long) or the staging
    //! folder cannot be made.
    bool Create();
    //! Where the files go until Publish(); empty before Create().
    QString GetPath() const;
    //! Puts the staging folder in the target's place and deletes what stood
    //! there. False when neither rename could be made; the staging folder
    //! then stays until the object is destroyed.
    bool Publish();
    //! The system's reason for the last failure.
    QString GetErrorString() const;

private:
    bool CheckTarget();
    bool MakeStagingFolder();
    // These return 0 or the system's error number.
    int PutInPlace();
    int MoveInPlace();
    int SwapWithTarget();
    int MoveTargetAside();
    void RestoreAside();
    bool Fail(int error);

    QString parentPath;
    QString targetPath;
    QString stagingPath;
    //! Where the old folder went when it could not be swapped out.
    QString asidePath;
    QString errorString;
    bool published = false;
};

#endif // ZELKINSTAGINGFOLDER_P_H
