#include "inpS/geometry/inpS_ElementMeasure.h"
#include <gtest/gtest.h>
#include <numeric>

namespace {

constexpr inp_ShapeKind kinds[] = {
#define INP_SHAPE(Name, ...) inp_ShapeKind::Name,
#include "parser/inp_shapes.def"
};

// Inside every reference element.
constexpr inpS_Point kInside = {0.25, 0.125, 0.375};

struct Functions {
  explicit Functions(const inpS_ShapeFunctions& functions, const inpS_Point& at)
      : values(functions.Nodes()), derivatives(functions.Nodes()) {
    functions.Evaluate(at, values, derivatives);
  }
  std::vector<double> values;
  std::vector<inpS_Point> derivatives;
};

class EveryShape : public testing::TestWithParam<inp_ShapeKind> {
protected:
  const inp_Shape& shape = inp_shape(GetParam());
  const inpS_ShapeFunctions& functions = inpS_ShapeFunctions::Of(GetParam());

  inpS_Point At(const inpS_Point& from) const {
    inpS_Point at = from;
    for (int n = functions.Dimension(); n < 3; ++n) at[static_cast<std::size_t>(n)] = 0;
    return at;
  }
};

} // namespace

TEST_P(EveryShape, IsOneAtItsNodeAndNothingAtOthers) {
  for (std::size_t i = 0; i < functions.Nodes(); ++i) {
    const Functions at(functions, functions.Places()[i]);
    for (std::size_t j = 0; j < functions.Nodes(); ++j)
      EXPECT_NEAR(at.values[j], i == j, 1e-15) << "function " << j + 1 << " at node " << i + 1;
  }
}

// Unity and the coordinates themselves come out.
TEST_P(EveryShape, InterpolatesLinearFields) {
  const inpS_Point place = At(kInside);
  const Functions at(functions, place);
  EXPECT_NEAR(std::accumulate(at.values.begin(), at.values.end(), 0.0), 1, 1e-14);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    double sum = 0;
    inpS_Point by{};
    for (std::size_t n = 0; n < functions.Nodes(); ++n) {
      sum += at.values[n] * functions.Places()[n][axis];
      for (std::size_t k = 0; k < 3; ++k)
        by[k] += at.derivatives[n][k] * functions.Places()[n][axis];
    }
    EXPECT_NEAR(sum, place[axis], 1e-14);
    for (std::size_t k = 0; k < 3; ++k) {
      const bool isOwn = k == axis && static_cast<int>(k) < functions.Dimension();
      EXPECT_NEAR(by[k], isOwn, 1e-13) << axis << " by " << k;
    }
  }
}

TEST_P(EveryShape, DerivativesAreThoseOfTheValues) {
  constexpr double step = 1e-6;
  const Functions at(functions, At(kInside));
  for (std::size_t k = 0; k < static_cast<std::size_t>(functions.Dimension()); ++k) {
    inpS_Point before = At(kInside), behind = before;
    before[k] -= step;
    behind[k] += step;
    const Functions low(functions, before), high(functions, behind);
    for (std::size_t n = 0; n < functions.Nodes(); ++n)
      EXPECT_NEAR(at.derivatives[n][k], (high.values[n] - low.values[n]) / (2 * step), 1e-8);
  }
}

// On a face the element's functions are the face's own, so that neighbours fit whatever they are.
TEST_P(EveryShape, FunctionsOfAFaceAreItsOwn) {
  for (std::size_t face = 0; face < shape.faces.size(); ++face) {
    const auto& ofFace = inpS_ShapeFunctions::OfFace(GetParam(), face);
    const Functions onFace(ofFace, {0.25, ofFace.Dimension() == 2 ? 0.125 : 0, 0});
    const std::span<const unsigned char> nodes = shape.faces[face].nodes;
    inpS_Point place{};
    std::vector<double> wanted(functions.Nodes());
    for (std::size_t n = 0; n < nodes.size(); ++n) {
      wanted[nodes[n] - 1u] = onFace.values[n];
      for (std::size_t axis = 0; axis < 3; ++axis)
        place[axis] += onFace.values[n] * functions.Places()[nodes[n] - 1u][axis];
    }
    const Functions at(functions, place);
    for (std::size_t n = 0; n < functions.Nodes(); ++n)
      EXPECT_NEAR(at.values[n], wanted[n], 1e-14) << "face " << face + 1 << ", node " << n + 1;
  }
}

// The faces of a volume close it and turn into it: ∮ x · n dA = -3 V.
TEST_P(EveryShape, FacesTurnIntoTheVolume) {
  const bool isInfinite = shape.name.substr(0, 3) == "Inf";
  if (shape.dimension != 3 || isInfinite) return;
  double sum = 0;
  for (const inp_ShapeList& face : shape.faces)
    for (int n = 1; n + 1 < face.corners; ++n) {
      const auto at = [&](int k) {
        return functions.Places()[face.nodes[static_cast<std::size_t>(k)] - 1u];
      };
      const inpS_Point a = at(0), b = at(n), c = at(n + 1);
      sum += (a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2]) +
              a[2] * (b[0] * c[1] - b[1] * c[0])) /
             2;
    }
  const double volume = inpS_measure(functions, inpS_Space::Space, functions.Places());
  EXPECT_GT(volume, 0);
  EXPECT_NEAR(sum, -3 * volume, 1e-13);
}

INSTANTIATE_TEST_SUITE_P(, EveryShape, testing::ValuesIn(kinds),
                         [](const auto& at) { return std::string(inp_shape(at.param).name); });
