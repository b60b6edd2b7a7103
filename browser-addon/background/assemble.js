// Puts the pieces that the frames of a tab have written down together into one page.
//
// Each piece is what content/capture.js returns: its place among the frames, the markup in parts
// (texts, and numbers that stand for the frame element with that index in its window), the styles.

import {frameList} from './request.js';

const deepestFrame = 8;

const escapedAttribute = text =>
  text.replace(/&/g, '&amp;').replace(/"/g, '&quot;').replace(/</g, '&lt;').replace(/>/g, '&gt;');

const placeKey = path => path.join('.');

/** Left to right: texts as they are, frame elements as `writeFrame` wants them. */
function written(piece, writeFrame) {
  return piece.parts.map(part => (typeof part === 'string' ? part : writeFrame(part))).join('');
}

/** A frame's whole document, with the frames in it. It has no address of its own where it goes. */
function frameDocument(piece, pieces) {
  const markup = written(piece, part => {
    const child = childPiece(piece, part, pieces);
    if (!child) return part.withSource;
    const content = '<!DOCTYPE html>\n' + frameDocument(child, pieces);
    return part.open + ` srcdoc="${escapedAttribute(content)}">` + part.close;
  });
  const head = `<base href="${escapedAttribute(piece.base)}">`;
  const styles = `<style>${piece.styles}</style>`;
  return markup.replace('<head>', () => '<head>' + head).replace('</head>', () => styles + '</head>');
}

function childPiece(piece, part, pieces) {
  if (piece.path.length >= deepestFrame) return undefined;
  return pieces.get(placeKey([...piece.path, part.frame]));
}

/**
 * The page as the program merges it: the n-th frame element in the markup takes the n-th item of
 * the list, if it has no source. A frame's document goes into an attribute, and the program escapes
 * only its double quotes there, so the ampersands are escaped here.
 */
export function assembled(results) {
  const pieces = new Map(results.map(piece => [placeKey(piece.path), piece]));
  const top = pieces.get('');
  if (!top) return undefined;
  const frames = [];
  const markup = written(top, part => {
    const child = childPiece(top, part, pieces);
    frames.push(child ? frameDocument(child, pieces).replace(/&/g, '&amp;') : null);
    return child ? part.open + '>' + part.close : part.withSource;
  });
  return {
    address: top.address,
    document: top.doctype + markup,
    styles: top.styles,
    frames: frameList(frames),
  };
}
