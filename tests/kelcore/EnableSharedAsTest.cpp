#include <memory>
#include <string>

#include <gtest/gtest.h>

#include <kelcore/utility/EnableSharedAs.h>

namespace {

using kelcore::utility::EnableSharedAs;

struct NameProperty : virtual public EnableSharedAs {
    std::string name = "name";
};
struct IDProperty : virtual public EnableSharedAs {
    int id = 7;
};
// Two paths to EnableSharedAs: the diamond every multi-property model makes.
struct Model : NameProperty, IDProperty {};
struct Unrelated : virtual public EnableSharedAs {};

bool SameOwner(const std::shared_ptr<const void>& a, const std::shared_ptr<const void>& b) {
    return !a.owner_before(b) && !b.owner_before(a);
}

TEST(EnableSharedAs, EveryBaseOfADiamondSharesTheOneControlBlock) {
    auto model = std::make_shared<Model>();
    NameProperty& name = *model;
    IDProperty& id = *model;

    auto fromName = name.SharedAs<Model>();
    auto fromID = id.SharedAs<IDProperty>();

    EXPECT_EQ(fromName.get(), model.get());
    EXPECT_EQ(fromID.get(), static_cast<IDProperty*>(model.get()));
    EXPECT_TRUE(SameOwner(fromName, model));
    EXPECT_TRUE(SameOwner(fromID, model));
    EXPECT_EQ(model.use_count(), 3);
}

TEST(EnableSharedAs, CastsAcrossFromOnePropertyToAnother) {
    auto model = std::make_shared<Model>();
    NameProperty& name = *model;

    auto id = name.SharedAs<IDProperty>();

    ASSERT_NE(id, nullptr);
    EXPECT_EQ(id->id, 7);
    EXPECT_EQ(id.get(), static_cast<IDProperty*>(model.get()));
}

TEST(EnableSharedAs, AnswersNullForATypeTheObjectIsNot) {
    auto model = std::make_shared<Model>();

    EXPECT_EQ(model->SharedAs<Unrelated>(), nullptr);
    EXPECT_TRUE(model->WeakAs<Unrelated>().expired());
}

TEST(EnableSharedAs, ThrowsBadWeakPtrBeforeAnySharedPtrOwnsTheObject) {
    Model model;

    EXPECT_THROW(model.SharedAs<Model>(), std::bad_weak_ptr);
    EXPECT_THROW(model.WeakAs<NameProperty>(), std::bad_weak_ptr);
}

TEST(EnableSharedAs, WorksOnAnObjectWrappedAfterConstruction) {
    std::shared_ptr<Model> model(new Model);

    EXPECT_EQ(static_cast<IDProperty&>(*model).SharedAs<Model>(), model);
}

TEST(EnableSharedAs, WeakAsExpiresWithTheObject) {
    auto model = std::make_shared<Model>();
    std::weak_ptr<NameProperty> weak = static_cast<IDProperty&>(*model).WeakAs<NameProperty>();
    ASSERT_FALSE(weak.expired());
    EXPECT_EQ(weak.lock()->name, "name");

    model.reset();

    EXPECT_TRUE(weak.expired());
}

TEST(EnableSharedAs, ConstFormsGiveConstPointersOnTheSameOwner) {
    auto model = std::make_shared<const Model>();
    const IDProperty& id = *model;

    std::shared_ptr<const NameProperty> name = id.SharedAs<NameProperty>();
    std::weak_ptr<const Model> weak = id.WeakAs<Model>();

    EXPECT_EQ(name.get(), static_cast<const NameProperty*>(model.get()));
    EXPECT_TRUE(SameOwner(name, model));
    EXPECT_EQ(weak.lock(), model);
}

TEST(EnableSharedAs, ACopyIsNotOwnedByTheOriginalsOwner) {
    auto model = std::make_shared<Model>();
    Model copy(*model);

    EXPECT_THROW(copy.SharedAs<Model>(), std::bad_weak_ptr);
    auto owned = std::make_shared<Model>(*model);
    EXPECT_EQ(owned->SharedAs<Model>(), owned);
    EXPECT_FALSE(SameOwner(owned, model));
}

}  // namespace
