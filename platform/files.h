// CFile, the executable's directory and the directory of the files a program writes.
#pragma once

#include <cstdio>
#include <string>

#include "platform/strings.h"
#include "platform/types.h"

class CFile {
public:
    // modeCreateNew: with modeCreate, the open fails (GetError() EEXIST) when the file exists, as the desktop's
    // CREATE_NEW: of two openers of one name, in one process or two, exactly one gets it.
    enum OpenFlags : UINT {
        modeRead = 0x0, modeWrite = 0x1, modeReadWrite = 0x2, modeCreate = 0x1000, modeCreateNew = 0x10000
    };
    enum SeekPosition : UINT { begin = 0, current = 1, end = 2 };

    CFile() = default;
    ~CFile();
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;

    // modeCreate alone creates the file or empties an existing one, and opens it for writing.
    // modeWrite alone opens an existing file for writing without emptying it; it fails if the file is missing.
    // Only regular files open: a pipe or a device would block the caller or never end, so it is refused
    // before anything waits on it.
    BOOL Open(LPCTSTR path, UINT flags);
    // FALSE when any byte written since Open could not be stored (a full disk, a size limit): nothing written
    // counts as saved before this says so.
    BOOL Close();
    // Length in bytes; 0 for a closed file.
    unsigned long long GetLength() const;
    UINT Read(void* buffer, UINT count);
    // Writes are buffered and reach the file at the latest at Close: a writer of many short rows costs one
    // system call per buffer, not per row. FALSE when the bytes could not be handed on (a buffer before them
    // failed).
    BOOL Write(const void* buffer, UINT count);
    // A seek to the end right behind this object's own writes stays where it is: no other writer appends to a
    // file while it is open here, so the end is known.
    long long Seek(long long offset, UINT from);
    // The system's error number of the last operation that failed; 0 when none has.
    int GetError() const { return m_nError; }

private:
    BOOL Fail();  // records errno, returns FALSE
    std::FILE* m_file = nullptr;
    int m_nError = 0;
    long long m_end = -1;  // the file's length while the position stands at its end; -1 when not known
};

// Fills buffer with the full path of the running executable; module must be null. Returns the length.
DWORD GetModuleFileNameA(void* module, LPTSTR buffer, DWORD size);

// The directory that GetModuleFileNameA reports can be moved for a scripted session, so that its result and
// output files land in a directory of the caller's choosing. An empty path restores the real one.
void AfxSetModuleDirectory(const CString& directory);

// The program's name outside its own folder: of its installed data (PREFIX/share/vantrel), its per-user data
// folder and its desktop entry.
constexpr char kProgramName[] = "vantrel";

// The directory, ending in '/', of the files that the program writes beside itself. It is the executable's
// own where the user may write there (a build folder, a copy in the user's home). An installed program's
// directory belongs to the system: as the desktop of old redirected a program's writes to its install folder
// into a per-user store, they then go to the user's data folder (UserDataDirectory), made on need. A
// directory set by AfxSetModuleDirectory stands as it is: whoever set it chose where files go.
// error receives 0, or the system's error number when the per-user folder could not be made.
CString AfxWrittenFilesDirectory(int& error);

namespace platform {

// The program's per-user data folder, ending in '/': under $XDG_DATA_HOME when that is an absolute path (a
// relative one is ignored, as the XDG base directory rules say), else under ~/.local/share.
std::string UserDataDirectory();
// Makes directory and every missing folder above it, the new ones readable by the user alone (0700, as the
// XDG rules ask). 0 when it exists afterwards, else the system's error number.
int MakeDirectories(const std::string& directory);
// The folder that the first data file dialog opens on, for a program in programDirectory: the samples beside
// it (a build folder), else those installed with it (PREFIX/share/vantrel/data for PREFIX/bin), else
// programDirectory itself.
std::string SampleDataDirectory(const std::string& programDirectory);

}  // namespace platform
