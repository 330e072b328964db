// Run-time class information: names, kinship, and the classes of the library itself.
#include <afxinet.h>

#include <gtest/gtest.h>

namespace
{

class CShape : public CObject
{
    DECLARE_DYNAMIC(CShape)
};

class CCircle : public CShape
{
    DECLARE_DYNAMIC(CCircle)

    int m_radius = 0;
};

// Names no run-time class of its own.
class CDisc : public CCircle
{
};

class CSquare : public CShape
{
    DECLARE_DYNAMIC(CSquare)
};

IMPLEMENT_DYNAMIC(CShape, CObject)
IMPLEMENT_DYNAMIC(CCircle, CShape)
IMPLEMENT_DYNAMIC(CSquare, CShape)

TEST(MfcRuntimeClass, NameSizeAndBaseAreThoseOfTheSource)
{
    const CRuntimeClass* const circle = RUNTIME_CLASS(CCircle);
    EXPECT_STREQ("CCircle", circle->m_lpszClassName);
    EXPECT_EQ(static_cast<int>(sizeof(CCircle)), circle->m_nObjectSize);
    EXPECT_EQ(RUNTIME_CLASS(CShape), circle->m_pBaseClass);
    EXPECT_STREQ("CObject", RUNTIME_CLASS(CObject)->m_lpszClassName);
    EXPECT_EQ(nullptr, RUNTIME_CLASS(CObject)->m_pBaseClass);
}

TEST(MfcRuntimeClass, GetRuntimeClassIsTheObjectsOwnAlsoThroughTheBase)
{
    const CCircle circle;
    const CObject& object = circle;
    EXPECT_EQ(RUNTIME_CLASS(CCircle), object.GetRuntimeClass());
}

TEST(MfcRuntimeClass, ClassWithoutMacrosCountsAsItsBase)
{
    const CDisc disc;
    EXPECT_EQ(RUNTIME_CLASS(CCircle), disc.GetRuntimeClass());
}

TEST(MfcRuntimeClass, IsKindOfFollowsTheBasesAndNotTheSiblings)
{
    const CCircle circle;
    EXPECT_TRUE(circle.IsKindOf(RUNTIME_CLASS(CCircle)));
    EXPECT_TRUE(circle.IsKindOf(RUNTIME_CLASS(CShape)));
    EXPECT_TRUE(circle.IsKindOf(RUNTIME_CLASS(CObject)));
    EXPECT_FALSE(circle.IsKindOf(RUNTIME_CLASS(CSquare)));
    const CShape shape;
    EXPECT_TRUE(CSquare().IsKindOf(RUNTIME_CLASS(CShape)));
    EXPECT_FALSE(shape.IsKindOf(RUNTIME_CLASS(CCircle)));
}

TEST(MfcRuntimeClass, IsDerivedFromNothingIsFalse)
{
    EXPECT_FALSE(RUNTIME_CLASS(CCircle)->IsDerivedFrom(nullptr));
}

TEST(MfcRuntimeClass, LibraryClassesNameTheirBases)
{
    const struct
    {
        const CRuntimeClass* derived;
        const CRuntimeClass* base;
        const char* name;
    } cases[] = {
        {RUNTIME_CLASS(CException), RUNTIME_CLASS(CObject), "CException"},
        {RUNTIME_CLASS(CInvalidArgException), RUNTIME_CLASS(CException), "CInvalidArgException"},
        {RUNTIME_CLASS(CFileException), RUNTIME_CLASS(CException), "CFileException"},
        {RUNTIME_CLASS(CInternetException), RUNTIME_CLASS(CException), "CInternetException"},
        {RUNTIME_CLASS(CFile), RUNTIME_CLASS(CObject), "CFile"},
        {RUNTIME_CLASS(CInternetSession), RUNTIME_CLASS(CObject), "CInternetSession"},
        {RUNTIME_CLASS(CHttpConnection), RUNTIME_CLASS(CInternetConnection), "CHttpConnection"},
        {RUNTIME_CLASS(CHttpFile), RUNTIME_CLASS(CInternetFile), "CHttpFile"},
    };
    for (const auto& [derived, base, name] : cases)
    {
        EXPECT_STREQ(name, derived->m_lpszClassName);
        EXPECT_EQ(base, derived->m_pBaseClass) << name;
    }
}

} // namespace
