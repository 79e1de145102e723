#include "service/contexts/AbstractContext.h"

#include <QMetaMethod>
#include <gtest/gtest.h>
#include <type_traits>

using EditorService::AbstractContext;

namespace {

int worker1 = 0;
int worker2 = 0;

} // namespace

TEST(AbstractContextTest, MetaObjectNamesTheClassAndItsTwoSignals) {
    const QMetaObject& meta = AbstractContext::staticMetaObject;
    EXPECT_STREQ(meta.className(), "EditorService::AbstractContext");
    EXPECT_EQ(meta.superClass(), &QObject::staticMetaObject);
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 2);
    EXPECT_EQ(meta.propertyCount() - meta.propertyOffset(), 0);
    EXPECT_EQ(meta.enumeratorCount() - meta.enumeratorOffset(), 0);
    EXPECT_EQ(meta.classInfoCount() - meta.classInfoOffset(), 0);
    EXPECT_EQ(meta.constructorCount(), 0);

    const char* names[] = {"becameBusy", "becameIdle"};
    for (int index = 0; index < 2; ++index) {
        const QMetaMethod signal = meta.method(meta.methodOffset() + index);
        EXPECT_EQ(signal.methodType(), QMetaMethod::Signal);
        EXPECT_EQ(signal.access(), QMetaMethod::Public);
        EXPECT_EQ(signal.name(), QByteArray(names[index]));
        EXPECT_EQ(signal.parameterNames(), QList<QByteArray>{"worker"});
        EXPECT_EQ(signal.parameterTypes(), QList<QByteArray>{"void*"});
        EXPECT_EQ(signal.returnType(), QMetaType::Void);
    }
}

TEST(AbstractContextTest, IsAConcreteObjectBuiltWithNoParent) {
    EXPECT_FALSE(std::is_abstract_v<AbstractContext>);
    EXPECT_TRUE(std::has_virtual_destructor_v<AbstractContext>);
    const AbstractContext context;
    EXPECT_EQ(context.parent(), nullptr);
    EXPECT_TRUE(context.children().isEmpty());
}

TEST(AbstractContextTest, EmitsBothSignalsFreelyWithNoListener) {
    AbstractContext context;
    emit context.becameBusy(&worker1);
    emit context.becameIdle(&worker1);
    emit context.becameIdle(&worker2);
    EXPECT_TRUE(context.dynamicPropertyNames().isEmpty());
}

TEST(AbstractContextTest, PassesOnAnIdleSignalOfAWorkerThatNeverWasBusy) {
    AbstractContext context;
    std::vector<void*> idle;
    QObject::connect(&context, &AbstractContext::becameIdle,
                     [&idle](void* worker) { idle.push_back(worker); });
    emit context.becameIdle(&worker2);
    EXPECT_EQ(idle, std::vector<void*>{&worker2});
}

TEST(AbstractContextTest, PassesOnTwoBusySignalsOfOneWorkerAsTwo) {
    AbstractContext context;
    std::vector<void*> busy;
    QObject::connect(&context, &AbstractContext::becameBusy,
                     [&busy](void* worker) { busy.push_back(worker); });
    emit context.becameBusy(&worker1);
    emit context.becameBusy(&worker1);
    EXPECT_EQ(busy, (std::vector<void*>{&worker1, &worker1}));
}
