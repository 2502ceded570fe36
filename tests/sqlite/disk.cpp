#include "sqlite/disk.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

namespace velanor::store {

// A file of SQLite's, with the system's behind it in the same piece of memory.
struct DiskFile {
  sqlite3_file base;
  Disk* disk;
  std::string* path;
};

struct DiskCalls {
  static sqlite3_file* inner(sqlite3_file* file) {
    return reinterpret_cast<sqlite3_file*>(reinterpret_cast<DiskFile*>(file) + 1);
  }
  static DiskFile& ours(sqlite3_file* file) { return *reinterpret_cast<DiskFile*>(file); }
  static Disk& disk(sqlite3_vfs* vfs) { return *static_cast<Disk*>(vfs->pAppData); }
  template <class Call>
  static auto guarded(sqlite3_file* file, Call call) {
    const std::scoped_lock lock(ours(file).disk->mutex_);
    return call(*ours(file).disk, inner(file));
  }

  static sqlite3_int64 size_of(sqlite3_file* system) {
    sqlite3_int64 size = 0;
    system->pMethods->xFileSize(system, &size);
    return size;
  }

  static int open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* out);
  static int remove(sqlite3_vfs* vfs, const char* name, int sync) {
    Disk& on = disk(vfs);
    const std::scoped_lock lock(on.mutex_);
    if (on.fails(Disk::Fault::kError)) return SQLITE_IOERR_DELETE;
    on.note({Disk::Event::Kind::kDelete, name, {}, 0});
    if (sync != 0) on.note({Disk::Event::Kind::kSync, name, {}, 0});
    std::error_code none;
    if (const auto size = std::filesystem::file_size(name, none); !none)
      on.room_ += static_cast<std::int64_t>(size);
    return on.system_->xDelete(on.system_, name, sync);
  }
  static int access(sqlite3_vfs* vfs, const char* name, int flags, int* out) {
    return disk(vfs).system_->xAccess(disk(vfs).system_, name, flags, out);
  }
  static int full(sqlite3_vfs* vfs, const char* name, int size, char* out) {
    return disk(vfs).system_->xFullPathname(disk(vfs).system_, name, size, out);
  }
  static int randomness(sqlite3_vfs* vfs, int size, char* out) {
    return disk(vfs).system_->xRandomness(disk(vfs).system_, size, out);
  }
  static int sleep(sqlite3_vfs* vfs, int microseconds) {
    return disk(vfs).system_->xSleep(disk(vfs).system_, microseconds);
  }
  static int time(sqlite3_vfs* vfs, double* out) {
    return disk(vfs).system_->xCurrentTime(disk(vfs).system_, out);
  }
  static int last_error(sqlite3_vfs* vfs, int size, char* out) {
    return disk(vfs).system_->xGetLastError(disk(vfs).system_, size, out);
  }
  static int time64(sqlite3_vfs* vfs, sqlite3_int64* out) {
    return disk(vfs).system_->xCurrentTimeInt64(disk(vfs).system_, out);
  }

  static int close(sqlite3_file* file) {
    const int code = inner(file)->pMethods->xClose(inner(file));
    delete ours(file).path;
    return code;
  }
  static int read(sqlite3_file* file, void* out, int size, sqlite3_int64 at) {
    return inner(file)->pMethods->xRead(inner(file), out, size, at);
  }
  static int write(sqlite3_file* file, const void* bytes, int size, sqlite3_int64 at) {
    return guarded(file, [&](Disk& on, sqlite3_file* system) {
      if (on.fails(Disk::Fault::kError)) return SQLITE_IOERR_WRITE;
      const int kept = on.fails(Disk::Fault::kFull) ? size / 2 : on.with_room(system, size, at);
      on.note({Disk::Event::Kind::kWrite,
               *ours(file).path,
               {static_cast<const char*>(bytes), static_cast<std::size_t>(kept)},
               at});
      const int code = system->pMethods->xWrite(system, bytes, kept, at);
      return kept < size ? SQLITE_FULL : code;
    });
  }
  static int truncate(sqlite3_file* file, sqlite3_int64 size) {
    return guarded(file, [&](Disk& on, sqlite3_file* system) {
      if (on.fails(Disk::Fault::kError)) return SQLITE_IOERR_TRUNCATE;
      on.note({Disk::Event::Kind::kTruncate, *ours(file).path, {}, size});
      on.room_ += std::max<sqlite3_int64>(size_of(system) - size, 0);
      return system->pMethods->xTruncate(system, size);
    });
  }
  static int sync(sqlite3_file* file, int flags) {
    return guarded(file, [&](Disk& on, sqlite3_file* system) {
      if (on.fails(Disk::Fault::kSync) || on.fails(Disk::Fault::kError)) return SQLITE_IOERR_FSYNC;
      on.note({Disk::Event::Kind::kSync, *ours(file).path, {}, 0});
      // What the system does with it is not what is looked at here.
      return on.remembers_ || !on.syncs_ ? SQLITE_OK : system->pMethods->xSync(system, flags);
    });
  }
  static int size(sqlite3_file* file, sqlite3_int64* out) {
    return inner(file)->pMethods->xFileSize(inner(file), out);
  }
  static int lock(sqlite3_file* file, int level) { return inner(file)->pMethods->xLock(inner(file), level); }
  static int unlock(sqlite3_file* file, int level) {
    return inner(file)->pMethods->xUnlock(inner(file), level);
  }
  static int reserved(sqlite3_file* file, int* out) {
    return inner(file)->pMethods->xCheckReservedLock(inner(file), out);
  }
  static int control(sqlite3_file* file, int what, void* argument) {
    return inner(file)->pMethods->xFileControl(inner(file), what, argument);
  }
  static int sector(sqlite3_file* file) { return inner(file)->pMethods->xSectorSize(inner(file)); }
  static int traits(sqlite3_file* file) { return inner(file)->pMethods->xDeviceCharacteristics(inner(file)); }
  static int map(sqlite3_file* file, int page, int size, int extend, void volatile** out) {
    return inner(file)->pMethods->xShmMap(inner(file), page, size, extend, out);
  }
  static int shm_lock(sqlite3_file* file, int offset, int n, int flags) {
    return inner(file)->pMethods->xShmLock(inner(file), offset, n, flags);
  }
  static void barrier(sqlite3_file* file) { inner(file)->pMethods->xShmBarrier(inner(file)); }
  static int unmap(sqlite3_file* file, int removes) {
    return inner(file)->pMethods->xShmUnmap(inner(file), removes);
  }
};

namespace {

constexpr sqlite3_io_methods kMethods = {
    2,
    DiskCalls::close,
    DiskCalls::read,
    DiskCalls::write,
    DiskCalls::truncate,
    DiskCalls::sync,
    DiskCalls::size,
    DiskCalls::lock,
    DiskCalls::unlock,
    DiskCalls::reserved,
    DiskCalls::control,
    DiskCalls::sector,
    DiskCalls::traits,
    DiskCalls::map,
    DiskCalls::shm_lock,
    DiskCalls::barrier,
    DiskCalls::unmap,
    nullptr,
    nullptr,
};

}  // namespace

int DiskCalls::open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* out) {
  Disk& on = disk(vfs);
  const int code = on.system_->xOpen(on.system_, name, inner(file), flags, out);
  ours(file).base.pMethods = inner(file)->pMethods != nullptr ? &kMethods : nullptr;
  if (ours(file).base.pMethods == nullptr) return code;
  ours(file).disk = &on;
  ours(file).path = new std::string(name == nullptr ? "" : name);
  return code;
}

Disk::Disk() : system_(sqlite3_vfs_find("unix")) {
  vfs_ = *system_;
  vfs_.szOsFile = static_cast<int>(sizeof(DiskFile)) + system_->szOsFile;
  vfs_.zName = "velanor-test-disk";
  vfs_.pAppData = this;
  vfs_.xOpen = DiskCalls::open;
  vfs_.xDelete = DiskCalls::remove;
  vfs_.xAccess = DiskCalls::access;
  vfs_.xFullPathname = DiskCalls::full;
  vfs_.xRandomness = DiskCalls::randomness;
  vfs_.xSleep = DiskCalls::sleep;
  vfs_.xCurrentTime = DiskCalls::time;
  vfs_.xGetLastError = DiskCalls::last_error;
  vfs_.xCurrentTimeInt64 = DiskCalls::time64;
  sqlite3_vfs_register(&vfs_, 1);
}

Disk::~Disk() {
  sqlite3_vfs_unregister(&vfs_);
  sqlite3_vfs_register(system_, 1);
}

void Disk::fail(Fault fault, int nth, Lasting lasting) {
  const std::scoped_lock lock(mutex_);
  fault_ = fault;
  until_ = nth;
  lasting_ = lasting;
  failed_ = 0;
}

bool Disk::fails(Fault fault) {
  if (fault != fault_ || fault_ == Fault::kNone) return false;
  if (until_ > 0) --until_;
  if (until_ > 0 || (failed_ > 0 && lasting_ == Lasting::kOnce)) return false;
  ++failed_;
  return true;
}

int Disk::with_room(sqlite3_file* file, int size, std::int64_t at) {
  const std::int64_t growth = std::max<std::int64_t>(at + size - DiskCalls::size_of(file), 0);
  const std::int64_t missing = std::clamp<std::int64_t>(growth - room_, 0, size);
  room_ -= growth - missing;
  turned_away_ += missing > 0;
  return size - static_cast<int>(missing);
}

void Disk::note(Event event) {
  const std::scoped_lock lock(mutex_);
  if (remembers_) events_.push_back(std::move(event));
}

// ---- Power cuts.

namespace {

void apply(const Disk::Event& event, std::size_t bytes, std::string& content) {
  if (event.kind == Disk::Event::Kind::kTruncate) return content.resize(static_cast<std::size_t>(event.at));
  const auto at = static_cast<std::size_t>(event.at);
  if (content.size() < at + bytes) content.resize(at + bytes);
  std::copy_n(event.bytes.begin(), bytes, content.begin() + static_cast<std::ptrdiff_t>(at));
}

}  // namespace

void PowerCut::take(const Disk::Event& event) {
  using Kind = Disk::Event::Kind;
  auto& pending = pending_[event.path];
  if (event.kind == Kind::kWrite || event.kind == Kind::kTruncate || event.kind == Kind::kDelete)
    return pending.push_back(event);
  if (event.kind != Kind::kSync) return;
  for (const Disk::Event& before : pending) {
    if (before.kind == Kind::kDelete) {
      durable_.erase(event.path);
    } else {
      apply(before, before.bytes.size(), durable_[event.path]);
    }
  }
  if (pending.empty() || pending.back().kind != Kind::kDelete) durable_.try_emplace(event.path);
  pending.clear();
}

PowerCut::Files PowerCut::state_at(std::size_t end, std::mt19937& random) {
  for (; next_ < end; ++next_) take(events_[next_]);
  Files files = durable_;
  for (const auto& [path, events] : pending_) {
    for (const Disk::Event& event : events) {
      constexpr std::size_t kSector = 512;
      const auto fate = random() % 4;
      // What comes behind a deletion that is lost went to a file that is lost too.
      if (event.kind == Disk::Event::Kind::kDelete) {
        if (fate == 0) break;
        files.erase(path);
        continue;
      }
      if (fate == 0) continue;
      std::size_t bytes = event.bytes.size();
      if (fate == 1) bytes = bytes / kSector == 0 ? 0 : random() % (bytes / kSector + 1) * kSector;
      apply(event, std::min(bytes, event.bytes.size()), files[path]);
    }
  }
  return files;
}

}  // namespace velanor::store
