/** Finds the names of properties that must stay as they are in the built page. */
import {execFileSync} from 'node:child_process';
import {realpathSync} from 'node:fs';
import {createRequire} from 'node:module';
import {dirname, join} from 'node:path';

const compiler = realpathSync(execFileSync('sh', ['-c', 'command -v tsc'], { encoding: 'utf8' }).trim());
const ts = createRequire(compiler)('../lib/typescript.js');

/** Returns the sources of the page, and the checker of their types. */
function checkedSources(room) {
  const path = join(room, 'tsconfig.json');
  const { options, fileNames } =
      ts.parseJsonConfigFileContent(ts.readConfigFile(path, ts.sys.readFile).config, ts.sys, room);
  const program = ts.createProgram(
      fileNames.filter((name) => dirname(dirname(name)) === room), {...options, skipLibCheck: true });
  // Types of single expressions are only all known after a check of the whole.
  program.getSemanticDiagnostics();
  return {
    checker: program.getTypeChecker(),
    sources: program.getSourceFiles().filter((file) => !file.isDeclarationFile)
  };
}

/**
 * Returns the names of properties that the sources of the page share with the platform: those that the
 * platform declares for a type that they are used with, and those by which properties are looked up at run
 * time. A name that is not among them is the page's own in every place.
 */
export function fixedNames(room) {
  const { checker, sources } = checkedSources(room);
  const fixed = new Set();
  const partsOf = (type) => (type.isUnionOrIntersection() ? type.types.flatMap(partsOf) : [type]);

  const isOfPlatform = (declaration) => declaration.getSourceFile().isDeclarationFile;

  /**
   * Keeps the name of a property if the type has it from the platform, or has any names at all. The builder
   * leaves quoted names as they are; so they must not be names of the page's own.
   */
  function keepForeign(name, type) {
    const { text } = name;
    for (const part of partsOf(checker.getApparentType(type))) {
      if (part.flags & ts.TypeFlags.Any)
        throw new Error(`${name.getSourceFile().fileName}: ${name.parent.getText()}: the type is not known`);
      const quoted = ts.isStringLiteral(name);
      const property = part.getProperty(text);
      const declarations = property?.declarations ?? [];
      if (property === undefined ? !quoted && part.getStringIndexType() :
                                   quoted || declarations.some(isOfPlatform))
        fixed.add(text);
    }
  }

  /** Keeps the names that a value of this type can be. */
  const keepTexts = (type) => partsOf(checker.getBaseConstraintOfType(type) ?? type)
                                  .filter((part) => part.isStringLiteral())
                                  .forEach((part) => fixed.add(part.value));

  /** Keeps all names of the members of a type. */
  const keepMembers = (type) =>
      checker.getApparentType(type).getProperties().forEach(({ name }) => fixed.add(name));

  /** Returns whether a value of the type may have any names. */
  const isOpen = (type) =>
      type.getStringIndexType() || type.flags & (ts.TypeFlags.Any | ts.TypeFlags.Unknown);

  function visit(node) {
    const typeOf = (part) => checker.getTypeAtLocation(part);
    if (ts.isPropertyAccessExpression(node))
      keepForeign(node.name, typeOf(node.expression));
    else if (ts.isBindingElement(node) && ts.isObjectBindingPattern(node.parent) && !node.dotDotDotToken)
      keepForeign(node.propertyName ?? node.name, typeOf(node.parent));
    else if (ts.isObjectLiteralElementLike(node) && node.name && !ts.isComputedPropertyName(node.name)) {
      const type = checker.getContextualType(node.parent);
      if (type) keepForeign(node.name, type);
    } else if (ts.isElementAccessExpression(node) && ts.isStringLiteral(node.argumentExpression))
      keepForeign(node.argumentExpression, typeOf(node.expression));
    else if (ts.isElementAccessExpression(node))
      keepTexts(typeOf(node.argumentExpression));
    else if (ts.isComputedPropertyName(node))
      keepTexts(typeOf(node.expression));
    else if (ts.isCallExpression(node) && /^Object\.(keys|entries)$/.test(node.expression.getText()))
      keepMembers(typeOf(node.arguments[0]));
    else if (ts.isBinaryExpression(node) && node.operatorToken.kind === ts.SyntaxKind.InKeyword)
      keepMembers(typeOf(node.right));
    else if (ts.isAsExpression(node) && isOpen(typeOf(node.expression)))
      keepMembers(typeOf(node));
    ts.forEachChild(node, visit);
  }
  sources.forEach(visit);
  return fixed;
}
