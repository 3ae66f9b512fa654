#pragma once

/// Clang's thread safety attributes: the lock that a member or a function needs. Clang checks them
/// (-Wthread-safety); for other compilers they are empty.
#if defined(__clang__)
#define ORVO_THREAD_ATTRIBUTE(attribute) __attribute__((attribute))
#else
#define ORVO_THREAD_ATTRIBUTE(attribute)
#endif

/// For types: a lock, and an object that holds one for a scope.
#define CAPABILITY(name) ORVO_THREAD_ATTRIBUTE(capability(name))
#define SCOPED_CAPABILITY ORVO_THREAD_ATTRIBUTE(scoped_lockable)

/// For members: accessed only with the lock held; PT_GUARDED_BY protects the object pointed to.
#define GUARDED_BY(lock) ORVO_THREAD_ATTRIBUTE(guarded_by(lock))
#define PT_GUARDED_BY(lock) ORVO_THREAD_ATTRIBUTE(pt_guarded_by(lock))

/// For functions: called with the locks held, or without them.
#define REQUIRES(...) ORVO_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define EXCLUDES(...) ORVO_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))

/// For functions that take or release the locks; without arguments, the object itself is the lock.
#define ACQUIRE(...) ORVO_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define RELEASE(...) ORVO_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))

/// For a function that the analysis cannot follow; a comment says why.
#define NO_THREAD_SAFETY_ANALYSIS ORVO_THREAD_ATTRIBUTE(no_thread_safety_analysis)
