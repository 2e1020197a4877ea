#include "statistics_peer.h"

#include <Eigen/Dense>

namespace {

using Matrix = Eigen::Map<const Eigen::Matrix<float, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>>;
using Row = Eigen::Map<Eigen::RowVectorXf>;
using Column = Eigen::Map<Eigen::VectorXf>;

}  // namespace

// By the one-pass formula, as ours.
void peerMeanVarColumn(const float* mat, int height, int width, float* mean, float* var)
{
    const Matrix x(mat, height, width);
    Row m(mean, width), v(var, width);
    const float rows = static_cast<float>(height);
    m = x.colwise().mean();
    v = (x.array().square().colwise().sum() - rows * m.array().square()) / (rows - 1);
}

void peerSumColumn(const float* mat, int height, int width, float* dst)
{
    Row(dst, width) = Matrix(mat, height, width).colwise().sum();
}

void peerSumRow(const float* mat, int height, int width, float* dst)
{
    Column(dst, height) = Matrix(mat, height, width).rowwise().sum();
}
