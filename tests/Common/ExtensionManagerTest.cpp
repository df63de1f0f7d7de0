#include "Common/ExtensionManager.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "Common/Extensible.h"
#include "Common/ExtensionRegistrator.h"
#include "Yr/ErrorCodes.h"
#include "Yr/Exceptions.h"
#include "tests/support/ExpectYrException.h"

namespace Morvelan::Common::ExtensionTesting {

using Morvelan::Testing::ExpectYrException;

// The manager is process-wide: every test uses classes of its own, and
// registrators are static so their addresses are never reused.
struct Named : Extension {
    explicit Named(std::string name) : name(std::move(name)) {}
    std::string name;
};

std::string NameOf(const Yr::Ref<Extension>& extension) {
    return extension.IsNull() ? "none" : static_cast<const Named&>(*extension).name;
}

Yr::Ref<Extension> MakeNamed(const char* name) {
    return Yr::MakeRef<Named>(name);
}

ExtensionManager& Manager() {
    return ExtensionManager::GetInstance();
}

// Registers one named extension; the hooks run inside the manager's lock.
struct CountingRegistrator : ExtensionRegistrator {
    CountingRegistrator(const std::type_info& type, const char* id) : type(type), id(id) {}
    bool Register(ExtensionManager& manager) override {
        ++registerCalls;
        if (onRegister) onRegister(manager);
        return manager.Register(type, id, MakeNamed(id)) && accepts;
    }
    bool Revoke(ExtensionManager& manager) override {
        ++revokeCalls;
        return manager.Revoke(type, id);
    }
    const std::type_info& type;
    const char* id;
    bool accepts = true;
    int registerCalls = 0;
    int revokeCalls = 0;
    std::function<void(ExtensionManager&)> onRegister;
};

struct Shape : Extensible {};
struct Circle : Shape {};
struct Square : Shape {};
struct Printer {};

TEST(ExtensionManagerTest, LookupsUseTheMostDerivedClass) {
    ASSERT_TRUE(Manager().Register(typeid(Circle), "draw", MakeNamed("round")));
    ASSERT_TRUE(Manager().Register(typeid(Square), "draw", MakeNamed("angular")));
    const Circle circle;
    const Square square;
    const Shape shape;
    const Shape& asShape = circle;
    EXPECT_EQ(NameOf(asShape.GetExtension("draw")), "round");
    EXPECT_EQ(NameOf(square.GetExtension(Yr::UniString("draw"))), "angular");
    EXPECT_EQ(NameOf(shape.GetExtension("draw")), "none");
    EXPECT_EQ(NameOf(circle.GetExtension("unknown")), "none");
    EXPECT_TRUE(Manager().Revoke(typeid(Circle), "draw"));
    EXPECT_TRUE(Manager().Revoke(typeid(Square), "draw"));
}

struct Document : Extensible {};

TEST(ExtensionManagerTest, FirstRegistrationWinsAndRevokedExtensionsStayAliveWhileReferenced) {
    EXPECT_TRUE(Manager().Register(typeid(Document), "save", MakeNamed("first")));
    EXPECT_FALSE(Manager().Register(typeid(Document), Yr::UniString("save"), MakeNamed("second")));
    const Document document;
    const Yr::Ref<Extension> held = document.GetExtension("save");
    EXPECT_TRUE(Manager().Revoke(typeid(Document), "save"));
    EXPECT_FALSE(Manager().Revoke(typeid(Document), "save"));
    EXPECT_EQ(NameOf(document.GetExtension("save")), "none");
    EXPECT_EQ(NameOf(held), "first");
}

TEST(ExtensionManagerTest, TypeIdsAreReadableTypeNames) {
    EXPECT_EQ(ExtensionManager::GetTypeName(typeid(int)), Yr::UniString("int"));
    EXPECT_EQ(ExtensionManager::GetTypeName(typeid(Printer)),
              Yr::UniString("Morvelan::Common::ExtensionTesting::Printer"));
    ASSERT_TRUE(Manager().Register(typeid(Document), typeid(Printer), MakeNamed("printer")));
    const Document document;
    EXPECT_EQ(NameOf(document.GetExtension("Morvelan::Common::ExtensionTesting::Printer")),
              "printer");
    EXPECT_TRUE(Manager().Revoke(typeid(Document), typeid(Printer)));
    EXPECT_EQ(NameOf(document.GetExtension(typeid(Printer))), "none");
}

TEST(ExtensionManagerTest, InvalidArgumentsAreRefused) {
    const char* nullId = nullptr;
    const std::vector<std::pair<const char*, std::function<void()>>> cases = {
        {"Invalid extension: extension is null.",
         [] { Manager().Register(typeid(Document), "x", Yr::Ref<Extension>()); }},
        {"Invalid extension id: id is null.",
         [&] { Manager().Register(typeid(Document), nullId, MakeNamed("x")); }},
        {"Invalid extension id: id is empty.",
         [] { Manager().Register(typeid(Document), "", MakeNamed("x")); }},
        {"Invalid extension id: id is empty.",
         [] { Manager().Register(typeid(Document), Yr::UniString(), MakeNamed("x")); }},
        {"Invalid extension id: id is empty.",
         [] { Manager().GetExtension(typeid(Document), ""); }},
        {"Invalid extension id: id is null.", [&] { Document().GetExtension(nullId); }},
        {"Invalid extension id: id is null.", [&] { Manager().Revoke(typeid(Document), nullId); }},
    };
    for (const auto& [message, action] : cases) {
        SCOPED_TRACE(message);
        ExpectYrException<Yr::IllegalArgumentException>(action, message,
                                                        Yr::kIllegalArgumentErrorCode);
    }
}

struct Report : Extensible {};

TEST(ExtensionManagerTest, RegistratorsAreAppliedOnceAtTheNextLookup) {
    static CountingRegistrator registrator(typeid(Report), "export");
    const Report report;
    EXPECT_TRUE(Manager().Register(registrator));
    EXPECT_FALSE(Manager().Register(registrator));
    EXPECT_EQ(registrator.registerCalls, 0);
    EXPECT_EQ(NameOf(report.GetExtension("export")), "export");
    EXPECT_EQ(NameOf(report.GetExtension("export")), "export");
    EXPECT_EQ(registrator.registerCalls, 1);
    EXPECT_FALSE(Manager().Register(registrator));

    EXPECT_TRUE(Manager().Revoke(registrator));
    EXPECT_FALSE(Manager().Revoke(registrator));
    EXPECT_EQ(NameOf(report.GetExtension("other")), "none");
    EXPECT_EQ(registrator.revokeCalls, 1);
    EXPECT_EQ(NameOf(report.GetExtension("export")), "none");
    EXPECT_FALSE(Manager().Revoke(registrator));
}

struct Invoice : Extensible {};

TEST(ExtensionManagerTest, QueuedChangesCancelEachOther) {
    static CountingRegistrator registrator(typeid(Invoice), "mail");
    const Invoice invoice;
    EXPECT_TRUE(Manager().Register(registrator));
    EXPECT_TRUE(Manager().Revoke(registrator));
    EXPECT_EQ(NameOf(invoice.GetExtension("mail")), "none");
    EXPECT_EQ(registrator.registerCalls, 0);

    EXPECT_TRUE(Manager().Register(registrator));
    EXPECT_EQ(NameOf(invoice.GetExtension("mail")), "mail");
    EXPECT_TRUE(Manager().Revoke(registrator));
    EXPECT_TRUE(Manager().Register(registrator));
    EXPECT_EQ(NameOf(invoice.GetExtension("mail")), "mail");
    EXPECT_EQ(registrator.registerCalls, 1);
    EXPECT_EQ(registrator.revokeCalls, 0);

    EXPECT_TRUE(Manager().Revoke(registrator));
    EXPECT_EQ(NameOf(invoice.GetExtension("mail")), "none");
}

struct Letter : Extensible {};

TEST(ExtensionManagerTest, ARegistratorThatIsRefusedMayBeQueuedAgain) {
    static CountingRegistrator registrator(typeid(Letter), "fold");
    registrator.accepts = false;
    EXPECT_TRUE(Manager().Register(registrator));
    EXPECT_EQ(NameOf(Letter().GetExtension("fold")), "fold");
    EXPECT_FALSE(Manager().Revoke(registrator));
    EXPECT_TRUE(Manager().Register(registrator));
    EXPECT_EQ(NameOf(Letter().GetExtension("fold")), "fold");
    EXPECT_EQ(registrator.registerCalls, 2);
    EXPECT_TRUE(Manager().Revoke(typeid(Letter), "fold"));
}

struct Chart : Extensible {};

TEST(ExtensionManagerTest, RegistratorsMayUseTheManagerWhileBeingApplied) {
    static CountingRegistrator legend(typeid(Chart), "legend");
    static CountingRegistrator axis(typeid(Chart), "axis");
    axis.onRegister = [](ExtensionManager& manager) {
        // Nested lookup and queueing take the lock the lookup already holds.
        EXPECT_EQ(NameOf(manager.GetExtension(typeid(Chart), "axis")), "none");
        EXPECT_TRUE(manager.Register(legend));
    };
    ASSERT_TRUE(Manager().Register(axis));
    const Chart chart;
    EXPECT_EQ(NameOf(chart.GetExtension("legend")), "legend");
    EXPECT_EQ(NameOf(chart.GetExtension("axis")), "axis");
    EXPECT_EQ(axis.registerCalls, 1);
    EXPECT_EQ(legend.registerCalls, 1);
    EXPECT_TRUE(Manager().Revoke(axis));
    EXPECT_TRUE(Manager().Revoke(legend));
    EXPECT_EQ(NameOf(chart.GetExtension("axis")), "none");
    EXPECT_EQ(NameOf(chart.GetExtension("legend")), "none");
}

}  // namespace Morvelan::Common::ExtensionTesting
