#pragma once

#include <fathom/Export.hpp>

#include <trellis/VValueTrait.hpp>

#include <loam/StrongPtr.hpp>

#include <string>

namespace Orla {

using Loam::StrongPtr;

/// Passes a function between objects; it computes one number. The objects agree on its
/// arguments: both know the class derived from `Functor` that declares the operation.
///
/// It has no text form.
class FATHOM_API VScalarFunctor {
public:
    /// Base class of the functions.
    class FATHOM_API Functor : public Loam::ReferenceBase<Functor> {
    public:
        ~Functor() override = 0;

    protected:
        Functor();
    };

    /// Holds no function.
    VScalarFunctor();

    explicit VScalarFunctor(const StrongPtr<Functor>& theFunctor);
    VScalarFunctor(const VScalarFunctor&) = default;
    VScalarFunctor& operator=(const VScalarFunctor&) = default;
    ~VScalarFunctor();

    /// True if both hold the same function object or none.
    friend bool operator==(const VScalarFunctor&, const VScalarFunctor&) = default;

    StrongPtr<Functor> functor; ///< may be null; copies share it
};

template<>
struct FATHOM_API VValueTrait<VScalarFunctor> {
    /// Returns the empty text.
    static std::string Text(const VScalarFunctor& functor);

    /// Refuses every text.
    static bool setValueFromText(VScalarFunctor& functor, const std::string& text);
};

} // namespace Orla
