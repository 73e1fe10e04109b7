// No entry point: loading this as a module must fail.
namespace {}
