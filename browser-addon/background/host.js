// The way to the program: a native-messaging port, kept open so that the program can ask for the
// active tab.

import {chunks} from './request.js';

const hostName = 'com.maplebrook.corvalis';

/** Asking a browser for a host that is not installed costs little, but is not free. */
const pauseAfterFailure = 60_000;

export class HostMissing extends Error {}

export class Host {
  #port = null;
  #waiting = new Map();
  #lastIdentifier = 0;
  #failedAt = -Infinity;
  #answerQuestion;

  /** `answerQuestion(what)` gives the answer to "address" or "page", a promise of an object. */
  constructor(answerQuestion) {
    this.#answerQuestion = answerQuestion;
  }

  /** Opens the port if it is not open and has not failed just now. */
  connectInPassing() {
    if (!this.#port && Date.now() - this.#failedAt > pauseAfterFailure) this.#connect();
  }

  tellFocused() {
    this.connectInPassing();
    this.#port?.postMessage({kind: 'focused'});
  }

  /** Ends when the program has taken the request; fails with the program's reason. */
  sendRequest(request) {
    if (!this.#port) this.#connect();
    const id = ++this.#lastIdentifier;
    return new Promise((resolve, reject) => {
      this.#waiting.set(id, {resolve, reject});
      this.#post('request', id, request);
    });
  }

  #post(kind, id, text) {
    for (const chunk of chunks(text)) this.#port?.postMessage({kind, id, ...chunk});
  }

  #connect() {
    const port = chrome.runtime.connectNative(hostName);
    this.#port = port;
    port.onMessage.addListener(message => this.#take(message));
    port.onDisconnect.addListener(() => this.#lost(port.error ?? chrome.runtime.lastError));
  }

  #lost(error) {
    this.#port = null;
    this.#failedAt = Date.now();
    const reason = error?.message ?? 'The connection to Corvalis has ended.';
    const isMissing = /not found|No such native application|forbidden|Failed to start/i.test(reason);
    for (const {reject} of this.#waiting.values())
      reject(isMissing ? new HostMissing(reason) : new Error(reason));
    this.#waiting.clear();
  }

  #take(message) {
    if (message.kind === 'query') return this.#answer(message);
    const request = this.#waiting.get(message.id);
    if (message.kind !== 'result' || !request) return;
    this.#waiting.delete(message.id);
    if (message.ok) request.resolve();
    else request.reject(new Error(message.reason));
  }

  async #answer({id, what}) {
    let answer;
    try {
      answer = await this.#answerQuestion(what);
    } catch (error) {
      answer = {error: error.message};
    }
    this.#post('answer', id, JSON.stringify(answer));
  }
}
