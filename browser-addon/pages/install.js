// Opens the request that the page in the other tab could not be given to the program with. In a frame:
// whatever the browser shows instead of an unknown program is not seen.

const request = await chrome.runtime.sendMessage('request for the hint');

function handOver() {
  const frame = document.createElement('iframe');
  frame.hidden = true;
  frame.src = request;
  document.body.append(frame);
}

if (request) {
  const again = document.getElementById('again');
  again.href = '#sent';
  again.hidden = false;
  again.addEventListener('click', handOver);
  handOver();
}
