#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "Common/Extensible.h"
#include "Common/ExtensionManager.h"
#include "Common/ExtensionRegistrator.h"

namespace Morvelan::Common::ExtensionStressTesting {

constexpr int kThreads = 4;
constexpr int kSteps = 1500;
constexpr unsigned kAlive = 0xA11CEu;

// Marks itself dead on destruction, so a lookup handing out a destroyed
// extension is seen (and reported as a race by ThreadSanitizer).
struct Tracked : Extension {
    ~Tracked() override { state.store(0, std::memory_order_relaxed); }
    std::atomic<unsigned> state{kAlive};
};

struct Contested : Extensible {};

bool IsAliveOrNone(const Yr::Ref<Extension>& extension) {
    return extension.IsNull() ||
           static_cast<const Tracked&>(*extension).state.load(std::memory_order_relaxed) == kAlive;
}

// Registers one key; the manager calls it only under its lock, but the
// balance is read by the test thread, so it is atomic.
struct KeyRegistrator : ExtensionRegistrator {
    explicit KeyRegistrator(std::string id) : id(std::move(id)) {}
    bool Register(ExtensionManager& manager) override {
        const bool added = manager.Register(typeid(Contested), id.c_str(), Yr::MakeRef<Tracked>());
        if (added) balance.fetch_add(1);
        return added;
    }
    bool Revoke(ExtensionManager& manager) override {
        const bool removed = manager.Revoke(typeid(Contested), id.c_str());
        if (removed) balance.fetch_sub(1);
        return removed;
    }
    std::string id;
    std::atomic<int> balance{0};
};

std::array<KeyRegistrator, 3> g_registrators{KeyRegistrator("queued0"), KeyRegistrator("queued1"),
                                             KeyRegistrator("queued2")};

TEST(ExtensionManagerStressTest, ConcurrentChangesNeverHandOutADestroyedExtension) {
    ExtensionManager& manager = ExtensionManager::GetInstance();
    std::atomic<int> sharedBalance{0};
    std::atomic<int> faults{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            const Contested object;
            const std::string own = "own" + std::to_string(t);
            bool ownRegistered = false;
            for (int step = 0; step < kSteps; ++step) {
                KeyRegistrator& registrator = g_registrators[(t + step) % g_registrators.size()];
                switch ((t + step) % 4) {
                    case 0:
                        if (manager.Register(typeid(Contested), "shared", Yr::MakeRef<Tracked>()))
                            sharedBalance.fetch_add(1);
                        manager.Register(registrator);
                        break;
                    case 1:
                        if (manager.Revoke(typeid(Contested), "shared")) sharedBalance.fetch_sub(1);
                        manager.Revoke(registrator);
                        break;
                    default:
                        // Nobody else uses this key, so each change must take.
                        if (ownRegistered ? !manager.Revoke(typeid(Contested), own.c_str())
                                          : !manager.Register(typeid(Contested), own.c_str(),
                                                              Yr::MakeRef<Tracked>()))
                            faults.fetch_add(1);
                        ownRegistered = !ownRegistered;
                        break;
                }
                for (const char* id : {"shared", "queued0", "queued1", "queued2"})
                    if (!IsAliveOrNone(object.GetExtension(id))) faults.fetch_add(1);
                if (object.GetExtension(own.c_str()).IsNull() == ownRegistered) faults.fetch_add(1);
            }
            if (ownRegistered) manager.Revoke(typeid(Contested), own.c_str());
        });
    }
    for (std::thread& thread : threads) thread.join();

    EXPECT_EQ(faults.load(), 0);
    const Contested object;
    // The last lookup applied every queued change: each key is there exactly
    // when its registrations and revocations leave one over.
    EXPECT_EQ(object.GetExtension("shared").IsNull(), sharedBalance.load() == 0);
    for (KeyRegistrator& registrator : g_registrators) {
        SCOPED_TRACE(registrator.id);
        const int balance = registrator.balance.load();
        EXPECT_TRUE(balance == 0 || balance == 1);
        EXPECT_EQ(object.GetExtension(registrator.id.c_str()).IsNull(), balance == 0);
        manager.Revoke(registrator);
    }
    object.GetExtension("shared");  // applies the final revocations
    manager.Revoke(typeid(Contested), "shared");
}

}  // namespace Morvelan::Common::ExtensionStressTesting
