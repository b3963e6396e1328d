#pragma once

#include <fathom/Export.hpp>

#include <trellis/VValueTrait.hpp>

#include <loam/StrongPtr.hpp>

#include <string>

namespace Orla {

using Loam::StrongPtr;

/// Carries a function between objects that computes one number. What its arguments
/// are is up to those who give and take it: both know the class derived from
/// `Functor` that declares the operation.
///
/// It has no text form.
class FATHOM_API VScalarFunctor {
public:
    /// Base of the functions.
    class FATHOM_API Functor : public Loam::ReferenceBase<Functor> {
    public:
        ~Functor() override = 0;

    protected:
        Functor();
    };

    /// No function.
    VScalarFunctor();

    explicit VScalarFunctor(const StrongPtr<Functor>& theFunctor);
    VScalarFunctor(const VScalarFunctor&) = default;
    VScalarFunctor& operator=(const VScalarFunctor&) = default;
    ~VScalarFunctor();

    /// The same function object, or none on both sides.
    friend bool operator==(const VScalarFunctor&, const VScalarFunctor&) = default;

    StrongPtr<Functor> functor; ///< may be null; copies share it
};

template<>
struct FATHOM_API VValueTrait<VScalarFunctor> {
    /// Empty.
    static std::string Text(const VScalarFunctor& functor);

    /// Refuses every text.
    static bool setValueFromText(VScalarFunctor& functor, const std::string& text);
};

} // namespace Orla
