// No entry point of its own, only that of the module that it links: loading this as a module must fail.
namespace {}
