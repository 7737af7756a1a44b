#pragma once

// Which lock guards what, in words that clang checks (-Wthread-safety); nothing elsewhere.
#if defined(__clang__) && !defined(Q_MOC_RUN)
#define TORLAN_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define TORLAN_THREAD_ANNOTATION(x)
#endif

/// A class whose objects are locks; the word is what the compiler calls them.
#define TORLAN_CAPABILITY(word) TORLAN_THREAD_ANNOTATION(capability(word))
/// A class whose objects hold a lock as long as they live.
#define TORLAN_SCOPED_CAPABILITY TORLAN_THREAD_ANNOTATION(scoped_lockable)

/// On a field: written only with the lock held, read with it held at least shared.
#define TORLAN_GUARDED_BY(lock) TORLAN_THREAD_ANNOTATION(guarded_by(lock))

/// On a function: the caller holds the locks.
#define TORLAN_REQUIRES(...) TORLAN_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
/// On a function: the caller does not hold the locks, the function takes them.
#define TORLAN_EXCLUDES(...) TORLAN_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
/// On a function that means to go without a lock; say why beside it.
#define TORLAN_NO_THREAD_SAFETY_ANALYSIS TORLAN_THREAD_ANNOTATION(no_thread_safety_analysis)

/// On the operations of locks and lockers.
#define TORLAN_ACQUIRE(...) TORLAN_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define TORLAN_ACQUIRE_SHARED(...) TORLAN_THREAD_ANNOTATION(acquire_shared_capability(__VA_ARGS__))
#define TORLAN_RELEASE(...) TORLAN_THREAD_ANNOTATION(release_generic_capability(__VA_ARGS__))
